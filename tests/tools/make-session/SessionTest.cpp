#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "PersonMotion.h"
#include "Picture.h"
#include "Presentation.h"
#include "PresentedLook.h"
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
fs::path make(const fs::path& folder, const std::string& key) {
  const auto script = session::parseScript(
      "{" + key + R"(, "text": "hello", "person": {"portrait": "portraits/person_a.jpg"},
          "time": {"front": 0, "length": 0.34}, "faults": {"silence": true}})",
      SAMPLES);
  fs::create_directories(folder);
  const auto made = session::makeSession(*script, FACE_MODELS, folder, [](auto, auto) {});
  EXPECT_TRUE(made) << made.error();
  return folder;
}

TEST(Session, IsTheSameForTheSameSeedOnly) {
  const tests::ScratchFolder scratch;
  const fs::path first = make(scratch / "first", R"("seed": 1)");
  const fs::path again = make(scratch / "again", R"("seed": 1)");
  const fs::path other = make(scratch / "other", R"("seed": 2)");
  for (const std::string& name : session::sessionFiles(true)) {
    EXPECT_EQ(bytesOf(first / name), bytesOf(again / name)) << name;
    const bool seeded = name != "text.txt";
    EXPECT_EQ(bytesOf(first / name) != bytesOf(other / name), seeded) << name;
  }
}

TEST(Session, IsTheSameFilmWithoutTheCardsPhotographs) {
  const tests::ScratchFolder scratch;
  const fs::path with = make(scratch / "with", R"("stills": true)");
  const fs::path without = make(scratch / "without", R"("stills": false)");
  EXPECT_EQ(bytesOf(with / "session.mp4"), bytesOf(without / "session.mp4"));
  EXPECT_TRUE(fs::exists(with / "front.png"));
  EXPECT_FALSE(fs::exists(without / "front.png"));
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

  const std::vector<std::string> files = session::sessionFiles(true);
  const session::SessionCache cache(scratch / "cache", files);
  const auto work = cache.workFolder(*key);
  ASSERT_TRUE(work);
  for (const std::string& name : files) {
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

TEST(PersonMotion, BlinksAsAskedAndNotByItselfMeanwhile) {
  session::Script script;
  script.person.blinkEvery = 0.8;
  script.person.tasks = {{.what = "blinkTwice", .at = 3.0}};
  session::Random random(7);
  const std::vector<double> blinks = session::PersonMotion(script, 8, random).blinks();
  const auto between = [&blinks](double from, double to) {
    return std::ranges::count_if(blinks, [=](double at) { return at >= from && at < to; });
  };
  EXPECT_EQ(between(2.7, 3.8), 2);
  EXPECT_GT(between(0, 2.7) + between(3.8, 8), 4);
}

TEST(PersonMotion, BeginsAlikeInALongerFilm) {
  session::Script script;
  script.person.tasks = {{.what = "turnLeft", .at = 2.0}};
  const auto yaw = [&script](double length) {
    session::Random random(7);
    return session::PersonMotion(script, length, random).at(2.6, 0).yaw;
  };
  EXPECT_GT(yaw(4), 10);
  EXPECT_EQ(yaw(4), yaw(40));
}

TEST(Presentation, LightsADisplayByTheBeatOfItsGrid) {
  constexpr double kTurn = 6.283185307179586;
  cv::Mat mapX(90, 160, CV_32FC1), mapY(90, 160, CV_32FC1);
  for (int row = 0; row < mapX.rows; ++row)
    for (int column = 0; column < mapX.cols; ++column) {
      mapX.at<float>(row, column) = static_cast<float>(1.1 * column - 3.0);
      mapY.at<float>(row, column) = static_cast<float>(row - 7.3);
    }
  cv::Mat picture(90, 160, CV_8UC3, {128, 128, 128});
  session::litByDisplay(picture, {mapX, mapY, 1.04, 0.5});
  const double tone = 16 + (250 - 16) * 0.96 * std::pow(128 / 255.0, 0.88);
  double most = 0;
  for (int row = 0; row < picture.rows; ++row)
    for (int column = 0; column < picture.cols; ++column) {
      const double beat = std::cos(kTurn * (mapX.at<float>(row, column) / 1.04 - column)) +
                          std::cos(kTurn * (mapY.at<float>(row, column) / 1.04 - row));
      const double band = 1.0 + 0.02 * std::sin(0.5 + kTurn * 2.3 * row / picture.rows);
      const double x = column / 40.0 - 2.88, y = row / 12.6 - 0.2 / 0.14;
      const double shine = 26 * std::exp(-(x * x + y * y));
      const double light = std::min(255.0, std::round(tone) * (1.0 + 0.035 * beat) * band + shine);
      most = std::max(most, std::abs(picture.at<cv::Vec3b>(row, column)[0] - light));
    }
  EXPECT_LT(most, 0.6);
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
