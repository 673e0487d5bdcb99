#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "platform/foundation/RunLoop.h"

namespace platform {

/// Virtual time: the clock jumps from event to event, all on the calling thread. Events of equal
/// time run in posting order, frames first; the same input gives the same run, whatever the load.
class VirtualRunLoop final : public RunLoop {
 public:
  enum class Stop { idle, condition, deadline, stepLimit };

  VirtualRunLoop();
  ~VirtualRunLoop() override;

  TimePoint now() const override { return now_; }
  DispatchQueue& mainQueue() override;
  DispatchQueue& globalQueue(QualityOfService qos) override;
  std::shared_ptr<DispatchQueue> makeSerialQueue(const std::string& label,
                                                 QualityOfService qos) override;
  std::shared_ptr<Timer> scheduledTimer(Duration interval, bool repeats, Block block) override;
  void scheduleDevice(TimePoint time, EventClass eventClass, Block block) override;
  bool isVirtual() const override { return true; }

  /// Runs events until `done` holds, none is left, `deadline` has come (the clock then stands
  /// there), or `stepLimit` events have run: a loop that feeds itself fails, it never hangs.
  Stop runUntil(const std::function<bool()>& done, TimePoint deadline,
                std::uint64_t stepLimit = kDefaultStepLimit);
  /// Runs all events of the next `duration`, then stands at its end.
  Stop advance(Duration duration);
  /// Ends all timers and destroys all events that have not run, and what only they kept alive.
  void discardPending();

  static constexpr std::uint64_t kDefaultStepLimit = 50'000'000;

 private:
  class Queue;
  class VirtualTimer;
  using Key = std::tuple<TimePoint, EventClass, std::uint64_t>;

  void post(TimePoint time, EventClass eventClass, Block block);
  void runNext();

  TimePoint now_{};
  std::uint64_t sequence_ = 0;
  std::map<Key, Block> events_;
  std::vector<std::weak_ptr<Timer>> timers_;
  std::shared_ptr<DispatchQueue> queue_;
};

}  // namespace platform
