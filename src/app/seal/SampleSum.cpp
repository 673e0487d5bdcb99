#include "app/seal/SampleSum.h"

#include <cmath>

namespace corvana::app {
namespace {

constexpr double kVideoClock = 90000;
constexpr double kAudioClock = 48000;

std::string sizeOf(std::string_view bytes) {
  return std::to_string(bytes.size());
}

}  // namespace

void SampleSum::add(const devices::EncodedSample& sample) {
  const double clock = track_ == devices::FilmTrack::video ? kVideoClock : kAudioClock;
  const auto ticks = std::llround(platform::inSeconds(sample.time) * clock);
  if (!sample.codec.empty()) {
    sum_.add("codec " + sizeOf(sample.codec) + "\n");
    sum_.add(sample.codec);
  }
  sum_.add(std::to_string(ticks) + " " + sizeOf(sample.bytes) + "\n");
  sum_.add(sample.bytes);
  ++count_;
  bytes_ += sample.bytes.size();
}

nlohmann::ordered_json SampleSum::json() const {
  return {{"samples", count_}, {"bytes", bytes_}, {"sha256", sum_.hexadecimal()}};
}

}  // namespace corvana::app
