#pragma once

#include <functional>
#include <string>
#include <utility>

#include "engine/recorder/RecorderObserver.h"

namespace corvana::app {

/// Finds the words for the recorder's hints, in the language of the tables. Main queue.
class HostHints final : public engine::RecorderObserver {
 public:
  /// Shows words; empty ones when none are to be seen any more.
  using Show = std::function<void(const std::string& words)>;

  explicit HostHints(Show show) : show_(std::move(show)) {}

  void happened(const engine::RecorderEvent& event) override;

 private:
  const Show show_;
};

}  // namespace corvana::app
