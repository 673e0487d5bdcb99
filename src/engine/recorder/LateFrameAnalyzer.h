#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "engine/recorder/FrameAnalyzer.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::engine {

/// Stands in for an analyzer whose models a worker is still loading, so that the user sees the
/// camera's pictures meanwhile. Only for loops on the wall clock: in virtual time no frame may be
/// passed over.
class LateFrameAnalyzer final : public FrameAnalyzer {
 public:
  /// Loads the analyzer; the error is one sentence for the user.
  using Load = std::function<platform::Expected<std::shared_ptr<FrameAnalyzer>>()>;

  /// Begins to load on a worker, and returns at once. Main queue.
  static std::shared_ptr<LateFrameAnalyzer> start(platform::RunLoop& loop, Load load);

  bool isReady() const override { return ready_; }
  std::optional<platform::Fault> fault() const override { return fault_; }
  /// Looks at a frame; only when ready.
  Observation analyze(const platform::CMSampleBufferRef& frame, const AnalysisTask& task) override {
    return analyzer_->analyze(frame, task);
  }

 private:
  LateFrameAnalyzer() = default;

  std::shared_ptr<FrameAnalyzer> analyzer_;  ///< written before `ready_`, then left alone
  std::atomic<bool> ready_ = false;
  std::optional<platform::Fault> fault_;  ///< main queue
};

}  // namespace corvana::engine
