#pragma once

#include <functional>

#include "platform/foundation/RunLoop.h"

namespace corvana::platform {

/// A run loop that its owner runs: the thread that calls `runUntil` is the main queue, and makes
/// and destroys the loop, too.
class DrivenLoop : public RunLoop {
 public:
  /// Why `runUntil` came back. In virtual time a loop may also have nothing left to run, or have
  /// run far more blocks than any flow needs.
  enum class Stop { condition, deadline, idle, stepLimit };

  /// Runs blocks until `done` holds (asked between blocks), `deadline` has come, or, in virtual
  /// time, one of the other reasons.
  virtual Stop runUntil(const std::function<bool()>& done, TimePoint deadline) = 0;
  /// Makes `runUntil` ask `done` again; any thread.
  virtual void wake() = 0;
  /// Waits for blocks that are running on other threads, then ends all timers and destroys all
  /// blocks that have not begun, and what only they kept alive. Nothing runs afterwards.
  virtual void shutDown() = 0;
};

}  // namespace corvana::platform
