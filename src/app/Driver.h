#pragma once

#include <functional>
#include <memory>

#include "platform/foundation/RunLoop.h"

namespace app {

/// A run loop that the program runs itself: on the wall clock or in virtual time.
class Driver {
 public:
  enum class Stop { condition, deadline, idle, stepLimit };

  virtual ~Driver() = default;
  virtual platform::RunLoop& loop() = 0;
  /// Until `done` holds, `duration` has passed, or (virtual time) nothing is left to happen.
  virtual Stop run(const std::function<bool()>& done, platform::Duration duration) = 0;
  /// Makes `run` ask `done` again; any thread.
  virtual void wake() = 0;
  /// Destroys all that has not run, and what only that kept alive; nothing runs afterwards.
  virtual void shutDown() = 0;
};

enum class TimeKind { media, real };

std::unique_ptr<Driver> makeDriver(TimeKind kind);

}  // namespace app
