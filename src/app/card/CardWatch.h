#pragma once

#include <optional>
#include <vector>

#include "app/card/DocumentHints.h"
#include "app/record/EventLog.h"
#include "engine/recorder/RecorderObserver.h"

namespace corvana::app {

/// Sets the live card's print against its zone or code whenever a side was read, and tells the log
/// what became of each field. Main queue.
class CardWatch final : public engine::RecorderObserver {
 public:
  CardWatch(EventLog& events, const DocumentRules& rules) : events_(events), rules_(rules) {}

  void happened(const engine::RecorderEvent& event) override;
  void cardRead(const corvana::DetectedData& side) override;

  /// Of the sides that were read last.
  std::vector<DocumentHint> hints() const;

 private:
  std::vector<const corvana::DetectedData*> sides() const;

  EventLog& events_;
  const DocumentRules rules_;
  std::optional<corvana::DetectedData> front_;
  std::optional<corvana::DetectedData> back_;
  /// Fields are told again only when something changed.
  nlohmann::ordered_json told_ = nlohmann::ordered_json::array();
};

}  // namespace corvana::app
