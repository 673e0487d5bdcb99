#pragma once

#include <optional>
#include <string>

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

/// Hears every decision of the module, on the main queue.
class DecisionObserver {
 public:
  virtual ~DecisionObserver() = default;
  virtual void decided(const Decision& decision) = 0;
};

}  // namespace corvana
