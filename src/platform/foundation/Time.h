#pragma once

#include <chrono>
#include <ratio>

/// Time of the system: monotonic, counted from the start of a run loop. The wall clock is never
/// read.
namespace corvana::platform {

using Duration = std::chrono::nanoseconds;

/// Tag of the run loop's clock; it has no `now()`: only a `RunLoop` tells the time.
struct MonotonicClock {
  using duration = Duration;
  using rep = duration::rep;
  using period = duration::period;
  static constexpr bool is_steady = true;
};

using TimePoint = std::chrono::time_point<MonotonicClock, Duration>;

constexpr Duration seconds(double value) {
  return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(value));
}

constexpr double inSeconds(Duration duration) {
  return std::chrono::duration<double>(duration).count();
}

}  // namespace corvana::platform
