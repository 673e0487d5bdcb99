#include <clocale>

#include <gtest/gtest.h>

#include "app/settings/OptionTable.h"

namespace corvana::tests {
namespace {

TEST(OptionTable, HasTheSameNumbersWhereDecimalsHaveAComma) {
  // This program's main has asked for a locale with a comma.
  if (*std::localeconv()->decimal_point != ',') GTEST_SKIP() << "no decimals with a comma here";
  EXPECT_EQ(app::currentOptions()["videoCapture.idToSelfieMatchThreshold"], 0.44);
}

}  // namespace
}  // namespace corvana::tests
