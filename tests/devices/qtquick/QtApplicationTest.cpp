#include <clocale>
#include <cstdlib>

#include <gtest/gtest.h>

#include "devices/qtquick/QtApplication.h"

namespace corvana::tests {
namespace {

TEST(QtApplication, LeavesTheProcessItsLocale) {
  constexpr const char* kUsers = "tr_TR.UTF-8";
  if (!std::setlocale(LC_ALL, kUsers)) GTEST_SKIP() << "no decimals with a comma here";
  std::setlocale(LC_ALL, "C");
  setenv("LC_ALL", kUsers, 1);
  devices::QtApplication::ofProcess();
  EXPECT_STREQ(std::localeconv()->decimal_point, ".");
}

}  // namespace
}  // namespace corvana::tests
