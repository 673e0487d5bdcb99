#include <gtest/gtest.h>

#include "app/machine/FilmSpeed.h"

namespace corvana::tests {
namespace {

TEST(FilmSpeed, ASlowerMachineIsToldToAskLessOfItsCamera) {
  const double pixels = 1280.0 * 720;
  const struct {
    double pixelsPerSecond;
    const char* mode;
  } cases[] = {{60 * pixels, "1280x720@30"},
               {59 * pixels, "1280x720@15"},
               {29 * pixels, "640x480@30"},
               {18 * pixels, "640x480@15"},
               {0, "640x480@15"}};
  for (const auto& [pixelsPerSecond, mode] : cases) {
    EXPECT_EQ(nameOf(app::cameraModeFor(pixelsPerSecond)), mode) << pixelsPerSecond;
  }
}

}  // namespace
}  // namespace corvana::tests
