#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/foundation/Time.h"

namespace corvana::platform {

using Block = std::function<void()>;

/// A queue of blocks. Serial queues run one block at a time in posting order, and what one block
/// wrote the next one sees; a global queue may run several at once in real time. Any thread may
/// post. A block is destroyed where it ran; one that never runs, when the loop ends, on the main
/// thread.
class DispatchQueue {
 public:
  virtual ~DispatchQueue() = default;
  /// Never runs the block itself, not even when called on this queue.
  virtual void async(Block block) = 0;
  /// Posts the block once `delay` has passed on the run loop's clock.
  virtual void asyncAfter(Duration delay, Block block) = 0;
};

/// How urgent the work of a queue is. `unspecified` leaves it to the run loop, which serves it like
/// work that the user waits for.
enum class QualityOfService { unspecified, userInteractive, userInitiated, utility, background };

/// What takes long and touches nothing that others change meanwhile. It returns what is to be done
/// with what came of it; an empty block where that is nothing.
using Work = std::function<Block()>;

/// A serial queue of work that goes on beside the main queue.
class WorkQueue {
 public:
  virtual ~WorkQueue() = default;
  /// Works in posting order, one at a time, and posts each outcome to the main queue. Any thread;
  /// in virtual time the loop's.
  virtual void async(Work work) = 0;
};

/// A timer on the main queue, and for it only. It holds its block until it is invalidated (also by
/// the block itself) or, one-shot, has fired. Letting go of the handle does not stop it.
class Timer {
 public:
  virtual ~Timer() = default;
  virtual void invalidate() = 0;
  virtual bool isValid() const = 0;
};

/// The order of events that fall on the same instant of virtual time: frames come before all else.
enum class EventClass { frame, task };

/// Time, queues and timers of one process. Three make it real: a window's event loop, a plain loop
/// on the wall clock, and the virtual-time loop of tests and replays.
class RunLoop {
 public:
  virtual ~RunLoop() = default;

  /// Any thread.
  virtual TimePoint now() const = 0;
  /// Runs the flow, its views and every completion.
  virtual DispatchQueue& mainQueue() = 0;
  /// For work that may take long.
  virtual DispatchQueue& globalQueue(QualityOfService qos) = 0;
  /// Main queue only; never null. Blocks that wait in it run also when nobody else holds the queue
  /// any more. What may yield to the recording of a film says so by `qos`.
  virtual std::shared_ptr<DispatchQueue> makeSerialQueue(
      const std::string& label, QualityOfService qos = QualityOfService::unspecified) = 0;
  /// Main queue only; never null. `usual` is how long such work takes on a machine that keeps up:
  /// in virtual time each outcome comes so long after its work was posted, whatever it took.
  virtual std::shared_ptr<WorkQueue> makeWorkQueue(const std::string& label, QualityOfService qos,
                                                   Duration usual);
  /// Main queue only; fires first after one interval. A one-shot timer is invalid once its block
  /// has begun.
  virtual std::shared_ptr<Timer> scheduledTimer(Duration interval, bool repeats, Block block) = 0;
  /// Runs a device's block at `time` (at once if that has passed) on a thread of the device floor;
  /// in virtual time inline, before every other event of the same instant when a frame.
  virtual void scheduleDevice(TimePoint time, EventClass eventClass, Block block) = 0;
  /// True where time stands still while work is done: frames are then pulled, never dropped.
  virtual bool isVirtual() const = 0;
};

/// Ends with the last owner's handle: the shared pointer is let go on the main queue, so that
/// controllers and views that a capture thread happened to own last are destroyed there.
template <class T>
void releaseOnMain(RunLoop& loop, std::shared_ptr<T> owner) {
  if (owner) loop.mainQueue().async([owner = std::move(owner)]() mutable { owner.reset(); });
}

/// Calls a weakly held delegate from any thread; nothing happens when it is gone.
template <class Delegate, class Call>
void callDelegate(RunLoop& loop, const std::weak_ptr<Delegate>& delegate, Call&& call) {
  if (std::shared_ptr<Delegate> owner = delegate.lock()) {
    call(*owner);
    releaseOnMain(loop, std::move(owner));
  }
}

}  // namespace corvana::platform
