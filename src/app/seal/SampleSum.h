#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "app/keys/Sha256.h"
#include "devices/film/FilmWitness.h"

namespace corvana::app {

/// The sum over some encoded samples of one track: of each its time in the track's clock (90,000
/// ticks a second for pictures, 48,000 for sound, as the film's file counts them), its length and
/// its bytes; before a track's first sample that of its codec.
class SampleSum {
 public:
  explicit SampleSum(devices::FilmTrack track) : track_(track) {}

  void add(const devices::EncodedSample& sample);
  std::int64_t count() const { return count_; }
  /// `samples`, `bytes` and `sha256`.
  nlohmann::ordered_json json() const;

 private:
  devices::FilmTrack track_;
  Sha256 sum_;
  std::int64_t count_ = 0;
  std::uint64_t bytes_ = 0;
};

inline const char* nameOf(devices::FilmTrack track) {
  return track == devices::FilmTrack::video ? "video" : "audio";
}

}  // namespace corvana::app
