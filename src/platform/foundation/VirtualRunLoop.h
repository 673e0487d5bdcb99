#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "platform/foundation/DrivenLoop.h"
#include "platform/foundation/LoopTimers.h"

namespace corvana::platform {

/// Virtual time: the clock jumps from event to event, all on the calling thread. Events of equal
/// time run in posting order, frames first; the same input gives the same run, whatever the load.
/// Work is done by `workers`, another loop, while the clock goes on to the instant of its outcome,
/// which waits for it; without one, where it is posted. The run is the same.
class VirtualRunLoop final : public DrivenLoop {
 public:
  explicit VirtualRunLoop(std::unique_ptr<DrivenLoop> workers = nullptr);
  ~VirtualRunLoop() override;

  TimePoint now() const override { return now_; }
  DispatchQueue& mainQueue() override;
  DispatchQueue& globalQueue(QualityOfService qos) override;
  std::shared_ptr<DispatchQueue> makeSerialQueue(const std::string& label,
                                                 QualityOfService qos) override;
  std::shared_ptr<WorkQueue> makeWorkQueue(const std::string& label, QualityOfService qos,
                                           Duration usual) override;
  std::shared_ptr<Timer> scheduledTimer(Duration interval, bool repeats, Block block) override;
  void scheduleDevice(TimePoint time, EventClass eventClass, Block block) override;
  bool isVirtual() const override { return true; }

  /// Stops also when no event is left, or so many have run that the loop must be feeding itself: it
  /// fails, it never hangs. At `deadline` the clock stands there.
  Stop runUntil(const std::function<bool()>& done, TimePoint deadline) override;
  /// Nothing to do: `runUntil` asks after each event.
  void wake() override {}
  void shutDown() override;
  /// Runs all events of the next `duration`, then stands at its end.
  Stop advance(Duration duration);

 private:
  class Queue;
  class DelayedWork;
  using Key = std::tuple<TimePoint, EventClass, std::uint64_t>;

  void post(TimePoint time, EventClass eventClass, Block block);
  void runNext();

  const std::unique_ptr<DrivenLoop> workers_;
  TimePoint now_{};
  std::uint64_t sequence_ = 0;
  std::map<Key, Block> events_;
  LoopTimers timers_;
  std::shared_ptr<DispatchQueue> queue_;
};

}  // namespace corvana::platform
