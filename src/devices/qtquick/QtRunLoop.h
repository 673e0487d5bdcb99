#pragma once

#include <functional>
#include <memory>
#include <string>

#include "devices/system/RealRunLoop.h"
#include "platform/foundation/DrivenLoop.h"

namespace corvana::devices {

/// A window's event loop as the run loop: the thread of the application object is the main queue.
/// Blocks run in turns with input and painting, so that a run of them does not hold either up.
/// Queues, timers and devices are those of the plain loop. Needs an application object.
class QtRunLoop : public platform::DrivenLoop {
 public:
  explicit QtRunLoop(int workers = 3);
  /// Shuts down, as `shutDown` does.
  ~QtRunLoop() override;

  platform::TimePoint now() const override { return plain_.now(); }
  platform::DispatchQueue& mainQueue() override { return plain_.mainQueue(); }
  platform::DispatchQueue& globalQueue(platform::QualityOfService qos) override {
    return plain_.globalQueue(qos);
  }
  std::shared_ptr<platform::DispatchQueue> makeSerialQueue(
      const std::string& label, platform::QualityOfService qos) override {
    return plain_.makeSerialQueue(label, qos);
  }
  std::shared_ptr<platform::Timer> scheduledTimer(platform::Duration interval, bool repeats,
                                                  platform::Block block) override {
    return plain_.scheduledTimer(interval, repeats, std::move(block));
  }
  void scheduleDevice(platform::TimePoint time, platform::EventClass eventClass,
                      platform::Block block) override {
    plain_.scheduleDevice(time, eventClass, std::move(block));
  }
  bool isVirtual() const override { return false; }

  Stop runUntil(const std::function<bool()>& done, platform::TimePoint deadline) override;
  void wake() override;
  void shutDown() override;

 private:
  class Pump;

  RealRunLoop plain_;
  std::unique_ptr<Pump> pump_;
};

}  // namespace corvana::devices
