#pragma once

#include <optional>
#include <string>

#include "corvana/Appearance.h"

namespace corvana {

/// One comparison that the module made, for the record of a run.
struct Decision {
  /// "selfieFace", "frontFace", "frontText", "backText", "backMrz", "documentType", "spokenWords".
  std::string name;
  /// Distance, ratio or share that was compared; absent when none could be made or none is
  /// measured.
  std::optional<double> value;
  std::optional<double> threshold;
  bool passed = false;
};

/// Where a prompt stands: over the oval of the face, or over the frame of the card.
enum class PromptPlace { face, card };

/// Hears every decision of the module, on the main queue.
class DecisionObserver {
 public:
  virtual ~DecisionObserver() = default;
  virtual void decided(const Decision& decision) = 0;
  /// Called before a prompt is shown, or taken away: its colours alone don't tell its type.
  virtual void prompted(PromptPlace /*place*/, PromptType /*type*/) {}
};

}  // namespace corvana
