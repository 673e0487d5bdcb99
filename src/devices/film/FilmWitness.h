#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/foundation/Time.h"

namespace corvana::devices {

enum class FilmTrack { video, audio };

/// One encoded picture or piece of sound, as it lies in a film's file. The bytes belong to the
/// caller.
struct EncodedSample {
  FilmTrack track = FilmTrack::video;
  platform::Duration time{};  ///< since the film's beginning
  std::string_view bytes;
  /// What a decoder must know before the first sample of its track; empty with all others.
  std::string_view codec;
};

/// Sees a film's encoded samples on their way into the file. Whoever takes that file apart later
/// finds the same ones, also after it was made plain.
class FilmWitness {
 public:
  virtual ~FilmWitness() = default;

  /// Before the first sample; `origin` is the instant of the film's first frame.
  virtual void began(platform::TimePoint origin, bool hasSound) = 0;
  /// In the order of each track, each on a thread of its own, both at once.
  virtual void saw(const EncodedSample& sample) = 0;
  /// After the last sample, when the film came to its end without a fault.
  virtual void ended() = 0;
};

/// Answers the witness of the next film.
using WitnessMaker = std::function<std::shared_ptr<FilmWitness>()>;

}  // namespace corvana::devices
