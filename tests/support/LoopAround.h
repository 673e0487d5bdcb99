#pragma once

#include <memory>
#include <string>
#include <utility>

#include "platform/foundation/RunLoop.h"

namespace corvana::tests {

/// Another loop as it is, for tests that change one thing of it.
class LoopAround : public platform::RunLoop {
 public:
  /// Keeps the reference and asks nothing of it yet.
  explicit LoopAround(platform::RunLoop& inner) : inner_(inner) {}

  platform::TimePoint now() const override { return inner_.now(); }
  platform::DispatchQueue& mainQueue() override { return inner_.mainQueue(); }
  platform::DispatchQueue& globalQueue(platform::QualityOfService qos) override {
    return inner_.globalQueue(qos);
  }
  std::shared_ptr<platform::DispatchQueue> makeSerialQueue(
      const std::string& label, platform::QualityOfService qos) override {
    return inner_.makeSerialQueue(label, qos);
  }
  std::shared_ptr<platform::Timer> scheduledTimer(platform::Duration interval, bool repeats,
                                                  platform::Block block) override {
    return inner_.scheduledTimer(interval, repeats, std::move(block));
  }
  void scheduleDevice(platform::TimePoint time, platform::EventClass eventClass,
                      platform::Block block) override {
    inner_.scheduleDevice(time, eventClass, std::move(block));
  }
  bool isVirtual() const override { return inner_.isVirtual(); }

 private:
  platform::RunLoop& inner_;
};

}  // namespace corvana::tests
