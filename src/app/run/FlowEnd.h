#pragma once

#include <optional>

#include "app/record/RunRecord.h"

namespace corvana::app {

/// How a flow ended: by the module's completion, or because the world around it did.
class FlowEnd {
 public:
  /// Only the first end counts.
  void set(Outcome outcome) {
    if (!outcome_) outcome_ = std::move(outcome);
  }
  void fail(const platform::Fault& fault) { set(tl::unexpected(corvana::IDError(fault))); }
  void cancel() { set(tl::unexpected(corvana::IDError(corvana::IDError::Strings::canceled))); }
  bool isThere() const { return outcome_.has_value(); }
  const Outcome& outcome() const { return *outcome_; }

 private:
  std::optional<Outcome> outcome_;
};

}  // namespace corvana::app
