#include "devices/live/CaptureTimes.h"

#include <algorithm>

namespace corvana::devices {
namespace {

/// Drivers may give a sample the time of the one before, or just miss it.
constexpr platform::Duration kJitter = std::chrono::milliseconds(50);
/// No sample comes from so far ahead.
constexpr platform::Duration kLongestLead = std::chrono::seconds(1);
/// Nor does any take so long from the device to here: the queues between hold less.
constexpr platform::Duration kLongestWay = std::chrono::seconds(2);

}  // namespace

bool CaptureTimes::hasJumped(platform::TimePoint captured, platform::TimePoint arrival) const {
  if (arrival - (captured + offset_) > kLongestWay) return true;
  if (!before_) return captured - arrival > kLongestLead;
  const platform::Duration step = captured - before_->captured;
  return step < -kJitter || step - (arrival - before_->arrival) > kLongestLead;
}

CaptureTimes::Placed CaptureTimes::place(std::optional<platform::TimePoint> captured,
                                         platform::TimePoint arrival) {
  const platform::TimePoint own = captured.value_or(arrival - offset_);
  const bool jumped = hasJumped(own, arrival);
  if (jumped) offset_ = arrival - own;
  platform::TimePoint time = std::min(own + offset_, arrival);
  if (before_) time = std::max(time, before_->time + platform::Duration(1));
  // The first sample of a device is no jump, wherever its clock stands.
  const bool isFirst = !before_;
  before_ = {own, arrival, time};
  return {time, jumped && !isFirst};
}

}  // namespace corvana::devices
