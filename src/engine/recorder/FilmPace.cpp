#include "engine/recorder/FilmPace.h"

#include <chrono>

namespace corvana::engine {
namespace {

using platform::Duration;
using platform::TimePoint;
using std::chrono::milliseconds;
using std::chrono::seconds;

/// How long a pace is kept at least before a slower one: the encoder answers after so long.
constexpr Duration kBeforeSlower = milliseconds(500);
/// And before a faster one, so that a load that comes and goes does not make the film stutter.
constexpr Duration kBeforeFaster = seconds(3);
/// A picture that comes a hair early is in time.
constexpr Duration kEarly = milliseconds(5);

}  // namespace

void FilmPace::adapt(TimePoint time, int waiting) {
  const bool slower = waiting > kMostWaiting && level_ < kLimits.size();
  const bool faster = waiting <= kWaitingWhenDrained && level_ > 0;
  if (!slower && !faster) return;
  if (changed_ && time - *changed_ < (slower ? kBeforeSlower : kBeforeFaster)) return;
  level_ += slower ? 1 : -1;
  changed_ = time;
}

bool FilmPace::isDue(TimePoint time) {
  if (time + kEarly < next_) return false;
  const Duration interval = Duration(seconds(1)) / kLimits[level_ - 1];
  next_ = time - next_ > interval ? time + interval : next_ + interval;
  return true;
}

bool FilmPace::takes(TimePoint time, int waiting) {
  adapt(time, waiting);
  if (level_ == 0) {
    next_ = time;
    return true;
  }
  if (isDue(time)) return true;
  ++leftOut_;
  return false;
}

std::optional<int> FilmPace::limit() const {
  if (level_ == 0) return {};
  return kLimits[level_ - 1];
}

}  // namespace corvana::engine
