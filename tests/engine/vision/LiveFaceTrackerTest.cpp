#include <vector>

#include <gtest/gtest.h>

#include "engine/vision/LiveFaceTracker.h"

namespace engine {
namespace {

using platform::CGRect;

constexpr CGRect kLive{210, 300, 300, 300};
constexpr CGRect kCardPhoto{150, 780, 150, 150};
constexpr CGRect kNone{};

struct Step {
  double time;               // seconds
  std::vector<CGRect> seen;  // faces of the frame
  CGRect expected;           // kNone: not seen
  double lostFor = 0;
};

struct Story {
  const char* name;
  std::vector<Step> steps;
};

class Tracking : public testing::TestWithParam<Story> {};

INSTANTIATE_TEST_SUITE_P(
    Stories, Tracking,
    testing::Values(
        Story{"StaysOnTheFaceWhenAPhotoComes",
              {{0.1, {kLive}, kLive}, {0.2, {kLive, kCardPhoto}, kLive}}},
        Story{"PhotoAloneIsNotTheFace",
              {{0.1, {kCardPhoto}, kNone, 0.1},
               {2.0, {kCardPhoto}, kNone, 2.0},
               {2.1, {kCardPhoto, kLive}, kLive}}},
        Story{"PhotoBeforeTheFaceIsNotTheFace",
              {{0.1, {{280, 380, 150, 150}}, kNone, 0.1}, {0.2, {kLive}, kLive}}},
        Story{"FaceHalfHiddenByACardStays",
              {{0.1, {{230, 300, 240, 210}}, {230, 300, 240, 210}},
               {0.2, {}, kNone, 0.1},
               {0.7, {{215, 290, 290, 290}}, {215, 290, 290, 290}}}},
        Story{"FollowsASlowWalkAndALeaningForward",
              {{0.2, {{260, 320, 310, 310}}, {260, 320, 310, 310}},
               {0.4, {{320, 340, 330, 330}}, {320, 340, 330, 330}},
               {1.4, {{330, 300, 420, 420}}, {330, 300, 420, 420}},
               {2.4, {{270, 270, 540, 540}}, {270, 270, 540, 540}}}},
        Story{"ABystanderFarAwayIsNotTheFace", {{0.1, {{-80, 900, 280, 280}}, kNone, 0.1}}},
        Story{"ComesBackAtAnotherPlace",
              {{0.1, {}, kNone, 0.1}, {1.6, {{460, 420, 280, 280}}, {460, 420, 280, 280}}}},
        Story{"TheLikelierOfTwoWins",
              {{0.1, {{60, 360, 250, 250}, {230, 310, 290, 290}}, {230, 310, 290, 290}}}}),
    [](const auto& story) { return story.param.name; });

TEST_P(Tracking, TellsTheLiveFace) {
  LiveFaceTracker tracker;
  tracker.start(kLive, platform::TimePoint{});
  for (const Step& step : GetParam().steps) {
    std::vector<Face> faces;
    for (const CGRect& box : step.seen)
      faces.push_back({box, {}, 0.9F});
    const auto sighting =
        tracker.update(faces, platform::TimePoint{} + platform::seconds(step.time));
    EXPECT_EQ(sighting.box.value_or(kNone), step.expected) << step.time;
    EXPECT_NEAR(platform::inSeconds(sighting.lostFor), step.lostFor, 1e-6) << step.time;
  }
}

}  // namespace
}  // namespace engine
