#include <cmath>

#include <gtest/gtest.h>

#include "engine/selfie/LipsWatch.h"
#include "engine/vision/OpenMouth.h"

namespace corvana::engine {
namespace {

/// Ten looks a second at a mouth, with sound beside it.
class Reading {
 public:
  /// `open` and `loud` say, for each time in seconds, which part of the mouth is open and the
  /// sound's amplitude.
  template <class Open, class Loud>
  std::optional<LivenessSign> read(double seconds, Open open, Loud loud) {
    return readLooks(
        seconds, [&](double now) { return tests::openMouth(open(now)); }, loud);
  }

  template <class Look, class Loud>
  std::optional<LivenessSign> readLooks(double seconds, Look look, Loud loud) {
    for (int count = 0; count < static_cast<int>(10 * seconds); ++count, now_ += 0.1) {
      watch_.addMouth(at(now_), look(now_));
      // The sound comes in pieces of a fifth of a second, later than the picture.
      if (count % 2 == 1) watch_.addSound(sound(now_ - 0.1, loud));
    }
    return watch_.sign(0.5);
  }

 private:
  static constexpr int kRate = 16000;
  static platform::TimePoint at(double seconds) {
    return platform::TimePoint(platform::seconds(seconds));
  }
  template <class Loud>
  static platform::CMSampleBuffer sound(double from, Loud loud) {
    platform::CMSampleBuffer buffer;
    buffer.presentationTime = at(from);
    buffer.sampleRate = kRate;
    buffer.channels = 1;
    for (int i = 0; i < kRate / 5; ++i) {
      const double time = from + static_cast<double>(i) / kRate;
      buffer.samples.push_back(
          static_cast<std::int16_t>(loud(time) * std::sin(2 * 3.14159265 * 200 * time)));
    }
    return buffer;
  }

  LipsWatch watch_;
  double now_ = 0;
};

double syllables(double seconds) {
  return std::abs(std::sin(3.14159265 * 3 * seconds));
}
double speaking(double seconds) {
  return seconds < 0.8 ? 20 : 20 + 6000 * syllables(seconds);
}
double quiet(double) {
  return 20;
}
double moving(double seconds) {
  return 0.6 * syllables(seconds);
}
double resting(double seconds) {
  return 0.25 + 0.02 * std::sin(7 * seconds);
}

TEST(LipsWatch, TellsAVoiceFromRestingLipsFromOneThatTheLipsSpeak) {
  const auto own = Reading().read(6, moving, speaking);
  ASSERT_TRUE(own);
  EXPECT_FALSE(own->isSeen);
  EXPECT_LT(own->value, 0.1);
  const auto dubbed = Reading().read(6, resting, speaking);
  ASSERT_TRUE(dubbed);
  EXPECT_TRUE(dubbed->isSeen);
  EXPECT_GT(dubbed->value, 0.9);
}

TEST(LipsWatch, SaysNothingWithoutEnoughOfAVoice) {
  EXPECT_FALSE(Reading().read(8, resting, quiet)) << "nobody speaks";
  EXPECT_FALSE(Reading().read(2, resting, speaking)) << "a word or two";
  EXPECT_FALSE(Reading().read(8, resting, [](double) { return 4000.0; }))
      << "an even noise is no voice";
}

TEST(LipsWatch, AVoiceFromBehindDoesNotAccuseWhoReadsMeanwhile) {
  Reading reading;
  reading.read(5, moving, speaking);
  const auto sign = reading.read(2, resting, speaking);
  ASSERT_TRUE(sign);
  EXPECT_FALSE(sign->isSeen) << sign->value;
}

TEST(LipsWatch, AFaceThatShakesAsAWholeDoesNotSpeak) {
  Reading reading;
  MouthLook look = tests::openMouth(0);
  const auto shake = [&](bool there) {
    for (std::size_t i = 0; i < look.lips.size(); ++i)
      look.lips[i] = there && i % 2 == 0 ? 1.2F : 1;
    for (std::size_t i = 0; i < look.skin.size(); ++i)
      look.skin[i] = there && i % 2 == 0 ? 1.2F : 1;
    return look;
  };
  const auto sign = reading.readLooks(
      6, [&, there = false](double) mutable { return shake(there = !there); }, speaking);
  ASSERT_TRUE(sign);
  EXPECT_TRUE(sign->isSeen) << sign->value;
}

/// A grey picture with a darker mouth, and the face's points in it.
struct PaintedFace {
  PaintedFace(int left, int light, int opening) {
    mesh[33] = {left + 60.0, 100, 0};
    mesh[263] = {left + 180.0, 100, 0};
    mesh[2] = {left + 120.0, 166, 0};
    std::vector<std::uint8_t> pixels(400 * 400, static_cast<std::uint8_t>(light));
    for (int y = 200; y < 200 + opening; ++y)
      std::fill_n(pixels.begin() + y * 400 + left + 95, 50, static_cast<std::uint8_t>(light / 3));
    picture = std::make_shared<platform::PixelBuffer>(400, 400, platform::PixelFormat::gray8,
                                                      std::move(pixels));
  }
  MouthLook look() const { return mouthLook(*picture, mesh); }

  FaceMesh mesh{};
  platform::PixelBufferRef picture;
};

TEST(MouthLook, FollowsTheFaceAndSeesTheMouthAlone) {
  const MouthLook closed = PaintedFace(0, 150, 0).look();
  const MouthChange elsewhere = changeBetween(closed, PaintedFace(37, 90, 0).look());
  EXPECT_LT(elsewhere.lips, 0.01) << "neither place nor light counts";
  EXPECT_LT(elsewhere.skin, 0.01);
  const MouthChange opened = changeBetween(closed, PaintedFace(37, 90, 15).look());
  EXPECT_GT(opened.lips, 0.1);
  EXPECT_LT(opened.skin, 0.01);
}

}  // namespace
}  // namespace corvana::engine
