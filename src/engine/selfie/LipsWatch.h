#pragma once

#include <deque>
#include <optional>

#include "engine/selfie/Liveness.h"
#include "engine/selfie/MouthLook.h"
#include "platform/media/SampleBuffer.h"

namespace corvana::engine {

/// Sets the mouth of who reads aloud against what is heard: a voice while the lips rest is somebody
/// else's, or comes from a loudspeaker. Pure; times come with pictures and samples, which are on
/// the same clock, and each of both grows.
class LipsWatch {
 public:
  void addMouth(platform::TimePoint time, const MouthLook& look);
  void addSound(const platform::CMSampleBuffer& samples);

  /// "lipsAtRest", of fraud: the share of the looks in which a voice was heard and the lips did not
  /// move, seen above `limit`. Absent before enough of a voice was heard.
  std::optional<LivenessSign> sign(double limit) const;

  /// Lips move when they look so different from one of the looks so long before, and so many times
  /// as different as the skin above them.
  static constexpr double kMoves = 0.045;
  static constexpr double kAboveSkin = 2;
  static constexpr platform::Duration kReach = std::chrono::milliseconds(400);
  /// Looks with a voice, by which something can be said: about two seconds of it.
  static constexpr int kLeastVoiced = 20;
  /// A voice is louder than this, decibels below full scale, and by so much than the quietest that
  /// is heard around it.
  static constexpr double kLeastLoudness = -50;
  static constexpr double kAboveNoise = 12;

 private:
  struct Mouth {
    platform::TimePoint time;
    MouthLook look;
  };
  struct Loudness {
    platform::TimePoint time;  ///< the middle
    double decibels = 0;
  };
  void judge();
  void forgetMouths();
  bool hearsVoice(platform::TimePoint time) const;
  bool movesAt(std::size_t index) const;

  std::deque<Mouth> mouths_;
  std::deque<Loudness> sounds_;
  std::size_t next_ = 0;  ///< of the looks that were not judged yet
  int voiced_ = 0;
  int atRest_ = 0;
};

}  // namespace corvana::engine
