#pragma once

#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "platform/foundation/RunLoop.h"

namespace corvana::devices {

/// The instant at which a recorded file's time 0 falls: shared by its camera, which sets it, and
/// its microphone, which follows. Any thread.
class FileTimeline {
 public:
  /// Begins the time line at `now` unless it has begun, and answers its origin.
  platform::TimePoint begin(platform::TimePoint now) {
    std::vector<platform::Block> waiting;
    platform::TimePoint origin;
    {
      const std::lock_guard lock(mutex_);
      if (!origin_) origin_ = now;
      origin = *origin_;
      waiting = std::exchange(waiting_, {});
    }
    for (const platform::Block& block : waiting)
      block();
    return origin;
  }

  /// The origin; absent before the beginning, and the block is then kept and called at it.
  std::optional<platform::TimePoint> originOr(platform::Block whenBegun) {
    const std::lock_guard lock(mutex_);
    if (!origin_) waiting_.push_back(std::move(whenBegun));
    return origin_;
  }

 private:
  std::mutex mutex_;
  std::optional<platform::TimePoint> origin_;
  std::vector<platform::Block> waiting_;
};

}  // namespace corvana::devices
