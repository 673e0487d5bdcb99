#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/foundation/RunLoop.h"

namespace corvana::platform {

/// The timers of a run loop's main queue, where all of them live.
class LoopTimers {
 public:
  /// `post` brings a block to the main queue at that time.
  LoopTimers(std::function<TimePoint()> now, std::function<void(TimePoint, Block)> post);

  /// What `RunLoop::scheduledTimer` promises. Beats that were missed while the main queue was busy
  /// are left out.
  std::shared_ptr<Timer> schedule(Duration interval, bool repeats, Block block);
  /// Invalidates all timers. A block may own the one who owns its timer: that ends here.
  void invalidateAll();

 private:
  class LoopTimer;

  const std::function<TimePoint()> now_;
  const std::function<void(TimePoint, Block)> post_;
  std::vector<std::weak_ptr<Timer>> timers_;
};

}  // namespace corvana::platform
