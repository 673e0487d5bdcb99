#pragma once

#include <deque>
#include <optional>

#include "engine/selfie/Liveness.h"
#include "engine/vision/FaceLandmarks.h"
#include "platform/media/SampleBuffer.h"

namespace corvana::engine {

/// Sets the mouth of who reads aloud against what is heard: a voice while the lips rest is somebody
/// else's, or comes from a loudspeaker. Pure; times come with pictures and samples, which are on
/// the same clock, and each of both grows.
class LipsWatch {
 public:
  void addMouth(platform::TimePoint time, double opening);
  void addSound(const platform::CMSampleBuffer& samples);

  /// "lipsAtRest", of fraud: the share of the looks in which a voice was heard and the lips did not
  /// move. Absent before enough of a voice was heard.
  std::optional<LivenessSign> sign() const;

  /// Lips move when the mouth's opening changes by so much of its width around a look, within so
  /// long to both sides: an unvoiced pause inside a word is shorter.
  static constexpr double kMoves = 0.045;
  static constexpr platform::Duration kReach = std::chrono::milliseconds(400);
  /// Share of voiced looks with lips at rest from which on the voice may not be theirs. On made
  /// films it does not part honest ones from dubbed ones surely (docs/liveness.md).
  static constexpr double kMostAtRest = 0.8;
  /// Looks with a voice, by which something can be said: about two seconds of it.
  static constexpr int kLeastVoiced = 20;
  /// A voice is louder than this, decibels below full scale, and by so much than the quietest that
  /// is heard around it.
  static constexpr double kLeastLoudness = -50;
  static constexpr double kAboveNoise = 12;

 private:
  struct Mouth {
    platform::TimePoint time;
    double opening = 0;
  };
  struct Loudness {
    platform::TimePoint time;  ///< the middle
    double decibels = 0;
  };
  void judge();
  bool hearsVoice(platform::TimePoint time) const;
  double movement(platform::TimePoint time) const;

  std::deque<Mouth> mouths_;
  std::deque<Loudness> sounds_;
  std::size_t next_ = 0;  ///< of the looks that were not judged yet
  int voiced_ = 0;
  int atRest_ = 0;
};

/// Height of the opening between the lips over the mouth's width.
double mouthOpening(const FaceMesh& mesh);

}  // namespace corvana::engine
