#pragma once

#include <optional>
#include <vector>

#include "corvana/SelfieCapture.h"
#include "engine/recorder/FrameAnalyzer.h"

namespace corvana::engine {

/// Turns what is seen frame by frame into the states of selfie capture: each change once, a success
/// when the face was good for a while, and then again at most twice a second. Pure.
class SelfiePhase {
 public:
  std::vector<corvana::SelfieCaptureState> judge(const SelfieView& view, platform::TimePoint now);
  /// Lets no success come before `time`.
  void holdBackUntil(platform::TimePoint time) { earliestSuccess_ = time; }
  /// The sharpest good selfie so far.
  const std::optional<corvana::Selfie>& best() const { return best_; }

  /// How long the face must be good without a break: shorter, and a face that only passes through
  /// the oval would count.
  static constexpr platform::Duration kSteadyTime = std::chrono::milliseconds(800);
  static constexpr platform::Duration kSuccessInterval = std::chrono::milliseconds(500);

 private:
  void remember(const SelfieView& view);

  std::optional<SelfieVerdict> lastVerdict_;
  std::string lastIssue_;
  std::optional<platform::TimePoint> goodSince_;
  std::optional<platform::TimePoint> lastSuccess_;
  platform::TimePoint earliestSuccess_{};
  std::optional<corvana::Selfie> best_;
  double bestSharpness_ = 0;
};

}  // namespace corvana::engine
