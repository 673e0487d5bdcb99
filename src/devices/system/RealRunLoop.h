#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "devices/system/BlockTimeline.h"
#include "platform/foundation/DrivenLoop.h"
#include "platform/foundation/LoopTimers.h"

namespace corvana::devices {

/// The plain loop on the wall clock for runs without a window. The thread that calls `runUntil` is
/// the main queue; it makes and destroys the loop, too. Devices get a thread of their own. Queues
/// of utility work and below share workers of lower CPU priority, all others share the rest: on a
/// machine that cannot keep up the former wait for the latter.
class RealRunLoop final : public platform::DrivenLoop {
 public:
  explicit RealRunLoop(int workers = 3);
  /// Shuts down, as `shutDown` does.
  ~RealRunLoop() override;

  platform::TimePoint now() const override { return main_.now(); }
  platform::DispatchQueue& mainQueue() override { return *mainQueue_; }
  platform::DispatchQueue& globalQueue(platform::QualityOfService qos) override;
  std::shared_ptr<platform::DispatchQueue> makeSerialQueue(const std::string& label,
                                                           platform::QualityOfService qos) override;
  std::shared_ptr<platform::Timer> scheduledTimer(platform::Duration interval, bool repeats,
                                                  platform::Block block) override;
  void scheduleDevice(platform::TimePoint time, platform::EventClass eventClass,
                      platform::Block block) override;
  bool isVirtual() const override { return false; }

  Stop runUntil(const std::function<bool()>& done, platform::TimePoint deadline) override;
  void wake() override { main_.interrupt(); }
  void shutDown() override;

  /// Sets what is told, on any thread, of each block posted to the main queue; for an event loop
  /// that runs that queue itself, in place of `runUntil`. Called at once after construction.
  void setOnMainPost(platform::Block onPost) { main_.setOnPost(std::move(onPost)); }
  /// Runs the next main block if it is due; false when none was.
  bool runOneDue();
  /// When the next main block is due; absent when there is none.
  std::optional<platform::TimePoint> nextDue() { return main_.nextDue(); }

 private:
  class TimelineQueue;
  class SerialQueue;

  BlockTimeline& workersFor(platform::QualityOfService qos);
  void startThread(BlockTimeline& timeline, int niceness = 0);

  BlockTimeline main_;
  BlockTimeline shared_;
  BlockTimeline utility_;
  BlockTimeline device_;
  std::unique_ptr<platform::DispatchQueue> mainQueue_;
  std::unique_ptr<platform::DispatchQueue> globalQueue_;
  std::unique_ptr<platform::DispatchQueue> utilityQueue_;
  std::vector<std::thread> threads_;
  platform::LoopTimers timers_;                           ///< main thread only
  std::vector<std::weak_ptr<SerialQueue>> serialQueues_;  ///< main thread only
};

}  // namespace corvana::devices
