#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "Picture.h"
#include "Presentation.h"
#include "Script.h"
#include "SessionCache.h"
#include "SessionMaker.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using tests::bytesOf;
using tests::writeBytes;

/// A third of a second in which the card is on its way in.
fs::path make(const fs::path& folder, std::uint64_t seed) {
  auto script = session::parseScript(
      R"({"text": "hello", "person": {"portrait": "portraits/person_a.jpg"},
          "time": {"front": 0, "length": 0.34}, "faults": {"silence": true}})",
      SAMPLES);
  script->seed = seed;
  fs::create_directories(folder);
  const auto made = session::makeSession(*script, FACE_MODELS, folder, [](auto, auto) {});
  EXPECT_TRUE(made) << made.error();
  return folder;
}

TEST(Session, IsTheSameForTheSameSeedOnly) {
  const tests::ScratchFolder scratch;
  const fs::path first = make(scratch / "first", 1);
  const fs::path again = make(scratch / "again", 1);
  const fs::path other = make(scratch / "other", 2);
  for (const std::string& name : session::kSessionFiles) {
    EXPECT_EQ(bytesOf(first / name), bytesOf(again / name)) << name;
    const bool seeded = name != "text.txt";
    EXPECT_EQ(bytesOf(first / name) != bytesOf(other / name), seeded) << name;
  }
}

TEST(Session, IsKeptUnderWhatItWasMadeFrom) {
  const tests::ScratchFolder scratch;
  const fs::path file = scratch / "portrait";
  writeBytes(file, "one");
  const auto key = session::sessionKey("script", 1, {file});
  ASSERT_TRUE(key);
  EXPECT_NE(*key, *session::sessionKey("script", 2, {file}));
  EXPECT_NE(*key, *session::sessionKey("scripts", 1, {file}));
  writeBytes(file, "two");
  EXPECT_NE(*key, *session::sessionKey("script", 1, {file}));

  const session::SessionCache cache(scratch / "cache");
  const auto work = cache.workFolder(*key);
  ASSERT_TRUE(work);
  for (const std::string& name : session::kSessionFiles) {
    EXPECT_FALSE(cache.has(*key));
    writeBytes(*work / name, name);
  }
  ASSERT_TRUE(cache.keep(*work, *key));
  EXPECT_TRUE(cache.has(*key));
  ASSERT_TRUE(cache.deliver(*key, scratch / "out"));
  EXPECT_EQ(bytesOf(scratch / "out" / "front.png"), "front.png");
}

/// What the camera sees at `seconds` of a picture that is bright in its left half.
cv::Mat seen(session::PresentationScript script, double seconds) {
  session::Random random(7);
  session::Presentation presentation(script, random);
  cv::Mat picture(session::kPictureHeight, session::kPictureWidth, CV_8UC3, {90, 90, 90});
  picture.colRange(0, picture.cols / 2).setTo(cv::Scalar(200, 200, 200));
  presentation.show(seconds, picture);
  return picture;
}

TEST(Presentation, ShowsWhatAnImpostorHoldsInPlaceOfThePerson) {
  session::Random random(7);
  session::PresentationScript script;
  const session::PersonPose living{.yaw = 9, .lids = 1, .mouth = 1};
  EXPECT_EQ(cv::norm(seen(script, 1), seen(script, 3), cv::NORM_INF), 0) << "a living person";

  script.kind = "print";
  script.crop = 0.15;
  EXPECT_GT(cv::norm(seen(script, 1), seen(script, 3), cv::NORM_INF), 50) << "a hand is not still";
  const cv::Vec3b white = seen(script, 1).at<cv::Vec3b>(640, 300);
  EXPECT_NEAR(white[0], 34 + 200 * (228 - 34) / 255, 2) << "ink on paper";
  EXPECT_EQ(session::Presentation(script, random).shown(living).lids, 0);
  script.livingEyes = true;
  EXPECT_EQ(session::Presentation(script, random).shown(living).lids, 1);
  EXPECT_EQ(session::Presentation(script, random).shown(living).yaw, 0);

  const cv::Mat flat = seen(script, 1);
  const auto bent = [&script](double bend, double axis) {
    script.bend = bend;
    script.bendAxis = axis;
    return seen(script, 1);
  };
  const cv::Mat away = bent(1, 0), towards = bent(-1, 0), lying = bent(1, 90);
  for (const cv::Mat& other : {flat, towards, lying})
    EXPECT_GT(cv::norm(away, other, cv::NORM_INF), 50);

  script.kind = "loop";
  const session::Presentation loop(script, random);
  EXPECT_DOUBLE_EQ(loop.momentShown(0.7), loop.momentShown(4.7));
  EXPECT_EQ(loop.shown(living).yaw, 9);
}

}  // namespace
}  // namespace corvana::tests
