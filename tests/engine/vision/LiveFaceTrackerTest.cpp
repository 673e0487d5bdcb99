#include <vector>

#include <gtest/gtest.h>

#include "engine/vision/LiveFaceTracker.h"

namespace corvana::engine {
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

const std::pair<const char*, std::vector<Step>> kStories[] = {
    {"stays on the face when a photo comes",
     {{0.1, {kLive}, kLive}, {0.2, {kLive, kCardPhoto}, kLive}}},
    {"a photo alone is not the face",
     {{0.1, {kCardPhoto}, kNone, 0.1},
      {2.0, {kCardPhoto}, kNone, 2.0},
      {2.1, {kCardPhoto, kLive}, kLive}}},
    {"a photo before the face is not the face",
     {{0.1, {{280, 380, 150, 150}}, kNone, 0.1}, {0.2, {kLive}, kLive}}},
    {"a face half hidden by a card stays",
     {{0.1, {{230, 300, 240, 210}}, {230, 300, 240, 210}},
      {0.2, {}, kNone, 0.1},
      {0.7, {{215, 290, 290, 290}}, {215, 290, 290, 290}}}},
    {"follows a slow walk and a leaning forward",
     {{0.2, {{260, 320, 310, 310}}, {260, 320, 310, 310}},
      {0.4, {{320, 340, 330, 330}}, {320, 340, 330, 330}},
      {1.4, {{330, 300, 420, 420}}, {330, 300, 420, 420}},
      {2.4, {{270, 270, 540, 540}}, {270, 270, 540, 540}}}},
    {"a bystander far away is not the face", {{0.1, {{-80, 900, 280, 280}}, kNone, 0.1}}},
    {"comes back at another place",
     {{0.1, {}, kNone, 0.1}, {1.6, {{460, 420, 280, 280}}, {460, 420, 280, 280}}}},
    {"the likelier of two wins",
     {{0.1, {{60, 360, 250, 250}, {230, 310, 290, 290}}, {230, 310, 290, 290}}}}};

TEST(LiveFaceTracker, TellsTheLiveFace) {
  for (const auto& [story, steps] : kStories) {
    LiveFaceTracker tracker;
    tracker.start(kLive, platform::TimePoint{});
    for (const Step& step : steps) {
      SCOPED_TRACE(testing::Message() << story << " at " << step.time);
      std::vector<Face> faces;
      for (const CGRect& box : step.seen)
        faces.push_back({box, {}, 0.9F});
      const auto sighting =
          tracker.update(faces, platform::TimePoint{} + platform::seconds(step.time));
      EXPECT_EQ(sighting.box.value_or(kNone), step.expected);
      EXPECT_NEAR(platform::inSeconds(sighting.lostFor), step.lostFor, 1e-6);
    }
  }
}

}  // namespace
}  // namespace corvana::engine
