#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/recorder/FilmPace.h"

namespace corvana::tests {
namespace {

using engine::FilmPace;
using platform::TimePoint;

struct Load {
  double cameraRate;
  double encoderRate;  ///< pictures a second that the encoder manages while the load lasts
  double greatestGap;  ///< seconds between two pictures of the film
};

/// Thirty seconds of a camera before an encoder that is slow from the fifth to the twentieth.
std::vector<double> filmOf(const Load& load, FilmPace& pace, double& mostWaiting) {
  std::vector<double> taken;
  double waiting = 0;
  for (int n = 0; n < 30 * load.cameraRate; ++n) {
    const double t = n / load.cameraRate;
    const double rate = t > 5 && t < 20 ? load.encoderRate : 2 * load.cameraRate;
    waiting = std::max(0.0, waiting - rate / load.cameraRate);
    mostWaiting = std::max(mostWaiting, waiting);
    if (!pace.takes(TimePoint(platform::seconds(t)), static_cast<int>(waiting))) continue;
    taken.push_back(t);
    ++waiting;
  }
  return taken;
}

TEST(FilmPace, LeavesOutEvenlyWhatTheEncoderDoesNotManageAndTakesAllAgainAfterwards) {
  for (const Load& load : {Load{30, 20, 0.1}, Load{30, 11, 0.14}, Load{60, 12, 0.12},
                           Load{15, 11, 0.14}, Load{25, 11, 0.13}}) {
    SCOPED_TRACE(std::to_string(load.cameraRate) + " against " + std::to_string(load.encoderRate));
    FilmPace pace;
    double mostWaiting = 0;
    const auto taken = filmOf(load, pace, mostWaiting);
    EXPECT_LT(mostWaiting, 60) << "a second more and pictures would be lost in one piece";
    double gap = 0;
    for (std::size_t i = 1; i < taken.size(); ++i)
      gap = std::max(gap, taken[i] - taken[i - 1]);
    EXPECT_LE(gap, load.greatestGap);
    for (double second = 0; second < 29; ++second) {
      const auto within =
          std::ranges::count_if(taken, [=](double t) { return t >= second && t < second + 1; });
      EXPECT_GE(within, 9) << second;
    }
    EXPECT_FALSE(pace.limit()) << "nothing waits any more";
    EXPECT_EQ(taken.size() + pace.leftOut(), 30 * load.cameraRate);
  }
}

TEST(FilmPace, TakesEveryPictureOfAnEncoderThatKeepsUp) {
  FilmPace pace;
  for (int n = 0; n < 1000; ++n)
    EXPECT_TRUE(
        pace.takes(TimePoint(platform::seconds(n / 30.0)), n % (FilmPace::kMostWaiting + 1)));
}

}  // namespace
}  // namespace corvana::tests
