#pragma once

#include <utility>
#include <vector>

#include "engine/recorder/RecorderObserver.h"

namespace corvana::app {

/// Tells several observers what one is told, one after the other, in their order. Main queue.
class ObserverList final : public engine::RecorderObserver {
 public:
  explicit ObserverList(std::vector<engine::RecorderObserver*> all) : all_(std::move(all)) {}

  void happened(const engine::RecorderEvent& event) override {
    for (auto* observer : all_)
      observer->happened(event);
  }
  void selfieTaken(const corvana::Selfie& selfie) override {
    for (auto* observer : all_)
      observer->selfieTaken(selfie);
  }
  void cardRead(const corvana::DetectedData& side) override {
    for (auto* observer : all_)
      observer->cardRead(side);
  }

 private:
  const std::vector<engine::RecorderObserver*> all_;
};

}  // namespace corvana::app
