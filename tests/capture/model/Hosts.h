#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Steps.h"

namespace corvana::tests {

/// Any host and any person: whatever comes, whenever.
Step wildStep(Dice& dice, const Beginning& beginning);

/// A host that keeps its promises (docs/host-contract.md) before a person who may do anything.
class CarefulHost {
 public:
  CarefulHost(const Beginning& beginning, TestWorld& world);
  Step next(Dice& dice);
  /// Promises that were broken all the same.
  const std::vector<std::string>& breaches() const { return promises_.breaches(); }

 private:
  void hear(const devices::HostEvent& event);
  std::optional<Step> report(Dice& dice);
  Step reportFace(Dice& dice);
  Step reportCard(Dice& dice);
  std::optional<Step> reportEnd(Dice& dice);
  double since(platform::TimePoint time) const;

  const Beginning& beginning_;
  TestWorld& world_;
  devices::HostContractValidator promises_;
  std::string mode_ = "selfieCapture";
  platform::TimePoint modeStart_;
  std::optional<platform::TimePoint> retried_;
  platform::TimePoint lastSuccess_;
  /// How far the present side has come: sought, found, classified.
  int cardStage_ = 0;
  std::size_t soundsBeforeCard_ = 0;
  bool paused_ = false;
  /// A time-out that the module has not answered yet.
  std::optional<Step> unanswered_;
};

}  // namespace corvana::tests
