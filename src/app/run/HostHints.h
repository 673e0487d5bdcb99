#pragma once

#include <functional>
#include <string>
#include <utility>

#include "engine/recorder/RecorderObserver.h"

namespace corvana::app {

/// Finds the words for the recorder's hints, in the language of the tables, and passes everything
/// on. Main queue.
class HostHints final : public engine::RecorderObserver {
 public:
  /// Shows words; empty ones when none are to be seen any more.
  using Show = std::function<void(const std::string& words)>;

  HostHints(engine::RecorderObserver& next, Show show) : next_(next), show_(std::move(show)) {}

  void happened(const engine::RecorderEvent& event) override;
  void selfieTaken(const corvana::Selfie& selfie) override { next_.selfieTaken(selfie); }
  void cardRead(const corvana::DetectedData& side) override { next_.cardRead(side); }

 private:
  engine::RecorderObserver& next_;
  const Show show_;
};

}  // namespace corvana::app
