#include <cmath>

#include <gtest/gtest.h>

#include "engine/selfie/LipsWatch.h"

namespace corvana::engine {
namespace {

/// Ten looks a second at a mouth, with sound beside it.
class Reading {
 public:
  /// `open` and `loud` say, for each time in seconds, the mouth's opening and the sound's
  /// amplitude.
  template <class Open, class Loud>
  std::optional<LivenessSign> read(double seconds, Open open, Loud loud) {
    for (int look = 0; look < static_cast<int>(10 * seconds); ++look, now_ += 0.1) {
      watch_.addMouth(at(now_), open(now_));
      // The sound comes in pieces of a fifth of a second, later than the picture.
      if (look % 2 == 1) watch_.addSound(sound(now_ - 0.1, loud));
    }
    return watch_.sign();
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
  return 0.05 + 0.15 * syllables(seconds);
}
double resting(double seconds) {
  return 0.08 + 0.008 * std::sin(7 * seconds);
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

}  // namespace
}  // namespace corvana::engine
