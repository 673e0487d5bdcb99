#include "engine/recorder/SelfiePhase.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace corvana::engine {
namespace {

using corvana::SelfieCapture;
using corvana::SelfieCaptureState;
using Verdict = SelfieVerdict;

SelfieCaptureState stateOf(const SelfieView& view) {
  switch (view.verdict) {
    case Verdict::noFace:
      return {SelfieCaptureState::DetectingFace{}};
    case Verdict::multipleFaces:
      return {SelfieCaptureState::MultipleFacesDetected{}};
    case Verdict::moveCloser:
      return {SelfieCaptureState::MoveCloser{}};
    case Verdict::moveAway:
      return {SelfieCaptureState::MoveAway{}};
    case Verdict::alignFace:
      return {SelfieCaptureState::AlignFace{}};
    case Verdict::issue:
      return {SelfieCaptureState::DetectedIssue{view.issue}};
    case Verdict::good:
      break;
  }
  return {SelfieCaptureState::CapturingFace{}};
}

bool showsLife(const LivenessVerdict& verdict) {
  return std::ranges::any_of(verdict.signs, [](const LivenessSign& sign) {
    return sign.isSeen && sign.speaksFor == LivenessSign::SpeaksFor::life;
  });
}

const std::string& wordsFor(LivenessTask task) {
  const auto& words = SelfieCapture::strings;
  switch (task) {
    case LivenessTask::turnLeft:
      return words.turnLeft;
    case LivenessTask::turnRight:
      return words.turnRight;
    case LivenessTask::lookUp:
      return words.lookUp;
    case LivenessTask::comeNearer:
      return words.comeNearer;
    case LivenessTask::blinkTwice:
      break;
  }
  return words.blinkTwice;
}

/// A face that does a task is not always fit for a selfie, but it is there.
bool isInPlace(Verdict verdict) {
  return verdict == Verdict::good || verdict == Verdict::issue || verdict == Verdict::moveAway;
}

bool isBelieved(const SelfieView& view) {
  return SelfieCapture::options.liveness == SelfieCapture::Liveness::off || !view.liveness ||
         view.liveness->kind == LivenessVerdict::Kind::living;
}

}  // namespace

platform::Duration selfieTimeOut(const SelfieCapture::Options& options) {
  const bool hasTasks = options.liveness == SelfieCapture::Liveness::active;
  const auto tasks = std::tuple_size_v<Challenge> + ChallengeJudge::kRepeats;
  return platform::seconds(options.timeOutSeconds +
                           (hasTasks ? tasks * options.livenessTaskSeconds : 0));
}

ChallengeJudge::Limits challengeLimits(const SelfieCapture::Options& options) {
  return {platform::seconds(options.livenessTaskSeconds), options.livenessTurnDegrees,
          options.livenessLookUpDegrees, options.livenessNearerWidth, options.livenessBlinkShare};
}

bool SelfiePhase::hasDoneTasks() const {
  return !challenge_ || challenge_->phase() == ChallengeJudge::Phase::done;
}

void SelfiePhase::watchTasks(const SelfieView& view, platform::TimePoint now) {
  taskEvent_.reset();
  if (hasDoneTasks() || hasFailed()) return;
  const auto watchedBefore = watchedFor_;
  if (view.liveness) watchedFor_ = view.liveness->watchedFor;
  const bool isLearning = challenge_->phase() == ChallengeJudge::Phase::watching;
  const bool counts = view.verdict == Verdict::good || !isLearning;
  // Another face, or a sign of fraud, starts the watching anew.
  if (watchedFor_ < watchedBefore) taskEvent_ = challenge_->interrupt(now);
  if (!taskEvent_) taskEvent_ = challenge_->look(now, counts ? view.head : std::nullopt);
}

/// Tells a face that is in its place what the challenge wants of it.
void SelfiePhase::instruct(SelfieView& view) const {
  if (!challenge_ || !isInPlace(view.verdict)) return;
  const bool isFraud =
      view.liveness && view.liveness->kind == LivenessVerdict::Kind::spoof && !isBelieved(view);
  if (isFraud) return;
  if (challenge_->phase() == ChallengeJudge::Phase::asking) {
    view.verdict = Verdict::issue;
    view.issue = wordsFor(challenge_->task());
  } else if (challenge_->phase() == ChallengeJudge::Phase::returning) {
    const auto way = challenge_->wayBack();
    view.verdict = way == ChallengeJudge::WayBack::moveAway ? Verdict::moveAway : Verdict::issue;
    // Whoever blinked is at rest already. What was asked for stays for this moment: other words
    // would be gone before anybody could read them.
    view.issue = way == ChallengeJudge::WayBack::none ? SelfieCapture::strings.blinkTwice
                                                      : SelfieCapture::strings.lookStraight;
  }
}

/// Makes an issue of a fit face that gives no sign of life, or one of fraud.
void SelfiePhase::demandLife(SelfieView& view) {
  const bool wasAsking = std::exchange(asks_, false);
  if (view.verdict != Verdict::good || isBelieved(view)) return;
  const LivenessVerdict& liveness = *view.liveness;
  const auto& advice = SelfieCapture::strings;
  const auto patience = platform::seconds(SelfieCapture::options.livenessAskSeconds);
  if (liveness.kind == LivenessVerdict::Kind::spoof) {
    view.verdict = Verdict::issue;
    view.issue = advice.showYourself;
  } else if (hasDoneTasks() && liveness.watchedFor >= patience && !showsLife(liveness) &&
             (wasAsking || !liveness.isBeginning)) {
    // What is asked for while a sign begins would be gone before anybody could read it.
    asks_ = true;
    const bool isFirstsTurn = (liveness.watchedFor - patience) / kAskInterval % 2 == 0;
    view.verdict = Verdict::issue;
    view.issue = isFirstsTurn ? advice.blinkEyes : advice.turnHead;
  }
}

void SelfiePhase::remember(const SelfieView& view) {
  if (!view.selfie || (best_ && view.sharpness <= bestSharpness_)) return;
  best_ = view.selfie;
  bestSharpness_ = view.sharpness;
}

std::vector<SelfieCaptureState> SelfiePhase::judge(const SelfieView& view,
                                                   platform::TimePoint now) {
  std::vector<SelfieCaptureState> states;
  watchTasks(view, now);
  SelfieView told = view;
  demandLife(told);
  instruct(told);
  const bool changed = told.verdict != lastVerdict_ || told.issue != lastIssue_;
  lastVerdict_ = told.verdict;
  lastIssue_ = told.issue;
  if (changed) states.push_back(stateOf(told));
  // The selfie is of a face at rest.
  if (view.verdict != Verdict::good || !hasDoneTasks()) {
    goodSince_.reset();
    best_.reset();
    return states;
  }
  remember(view);
  if (!goodSince_) goodSince_ = now;
  const bool steady = now - *goodSince_ >= kSteadyTime;
  const bool due = !lastSuccess_ || now - *lastSuccess_ >= kSuccessInterval;
  if (!steady || !due || !best_ || now < earliestSuccess_ || !isBelieved(view)) return states;
  lastSuccess_ = now;
  states.push_back({SelfieCaptureState::Success{*best_}});
  // The next success shows another picture of the face, in case this one was refused.
  best_.reset();
  return states;
}

}  // namespace corvana::engine
