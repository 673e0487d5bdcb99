#pragma once

#include <optional>

#include "platform/foundation/Time.h"

namespace corvana::devices {

/// Lays the samples of a live device on the run loop's clock, by the times the device gives them.
///
/// Times of a device are exact from one sample to the next, but not to be relied on: a driver may
/// start its clock anew. Not thread safe.
class CaptureTimes {
 public:
  struct Placed {
    platform::TimePoint time;
    bool jumped = false;  ///< the device's clock jumped, and counts anew from this sample on
  };

  /// `captured` is the device's own time of the sample, absent when it gives none; `arrival` is the
  /// present. The times that come out grow strictly and never lie after the arrival.
  Placed place(std::optional<platform::TimePoint> captured, platform::TimePoint arrival);

 private:
  struct Before {
    platform::TimePoint captured;
    platform::TimePoint arrival;
    platform::TimePoint time;
  };
  bool hasJumped(platform::TimePoint captured, platform::TimePoint arrival) const;

  std::optional<Before> before_;
  platform::Duration offset_{};  ///< from the device's clock to the run loop's
};

}  // namespace corvana::devices
