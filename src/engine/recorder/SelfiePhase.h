#pragma once

#include <optional>
#include <vector>

#include "corvana/SelfieCapture.h"
#include "engine/recorder/FrameAnalyzer.h"
#include "engine/selfie/Challenge.h"

namespace corvana::engine {

/// Turns what is seen frame by frame into the states of selfie capture: each change once, a success
/// when the face was good for a while, and then again at most twice a second. Pure.
class SelfiePhase {
 public:
  std::vector<corvana::SelfieCaptureState> judge(const SelfieView& view, platform::TimePoint now);
  /// Lets no success come before `time`.
  void holdBackUntil(platform::TimePoint time) { earliestSuccess_ = time; }
  /// Lets no success come before the person has done the tasks.
  void demand(const ChallengeJudge& challenge) { challenge_ = challenge; }
  /// What the last look did to a task.
  const std::optional<TaskEvent>& taskEvent() const { return taskEvent_; }
  /// The tasks were missed: nothing can succeed any more.
  bool hasFailed() const {
    return challenge_ && challenge_->phase() == ChallengeJudge::Phase::failed;
  }
  /// Whether a sign of life is being asked for.
  bool asks() const { return asks_; }
  /// The sharpest good selfie so far.
  const std::optional<corvana::Selfie>& best() const { return best_; }

  /// How long the face must be good without a break: shorter, and a face that only passes through
  /// the oval would count.
  static constexpr platform::Duration kSteadyTime = std::chrono::milliseconds(800);
  static constexpr platform::Duration kSuccessInterval = std::chrono::milliseconds(500);
  /// How long one sign of life is asked for before it is another's turn.
  static constexpr platform::Duration kAskInterval = std::chrono::seconds(3);

 private:
  void remember(const SelfieView& view);
  void demandLife(SelfieView& view);
  void watchTasks(const SelfieView& view, platform::TimePoint now);
  void instruct(SelfieView& view) const;
  bool hasDoneTasks() const;

  std::optional<SelfieVerdict> lastVerdict_;
  std::string lastIssue_;
  bool asks_ = false;
  std::optional<ChallengeJudge> challenge_;  ///< only in the active mode
  std::optional<TaskEvent> taskEvent_;
  platform::Duration watchedFor_{};
  std::optional<platform::TimePoint> goodSince_;
  std::optional<platform::TimePoint> lastSuccess_;
  platform::TimePoint earliestSuccess_{};
  std::optional<corvana::Selfie> best_;
  double bestSharpness_ = 0;
};

/// How long a selfie may take: longer by the tasks of the active mode, and one that may be missed.
platform::Duration selfieTimeOut(const corvana::SelfieCapture::Options& options);

/// What the tasks of the active mode are judged by.
ChallengeJudge::Limits challengeLimits(const corvana::SelfieCapture::Options& options);

}  // namespace corvana::engine
