#include <clocale>
#include <cstdlib>
#include <ctime>

#include <gtest/gtest.h>
#include <unicode/locid.h>

// Odd on purpose: a locale whose i has two upper cases and whose decimals have a comma, in a zone
// three quarters of an hour off. Nothing that users see or files hold may depend on either, but for
// the system's own words, which are English in the program, whose locale nobody sets.
int main(int argc, char** argv) {
  setenv("TZ", "Asia/Kathmandu", 1);
  tzset();
  if (!std::setlocale(LC_ALL, "tr_TR.UTF-8")) std::setlocale(LC_ALL, "C.UTF-8");
  std::setlocale(LC_MESSAGES, "C");
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale::setDefault(icu::Locale("tr", "TR"), status);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
