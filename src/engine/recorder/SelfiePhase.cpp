#include "engine/recorder/SelfiePhase.h"

#include <algorithm>

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

bool isBelieved(const SelfieView& view) {
  return SelfieCapture::options.liveness == SelfieCapture::Liveness::off || !view.liveness ||
         view.liveness->kind == LivenessVerdict::Kind::living;
}

}  // namespace

/// Makes an issue of a fit face that gives no sign of life, or one of fraud.
void SelfiePhase::demandLife(SelfieView& view) {
  asks_ = false;
  if (view.verdict != Verdict::good || isBelieved(view)) return;
  const LivenessVerdict& liveness = *view.liveness;
  const auto& advice = SelfieCapture::strings;
  const auto patience = platform::seconds(SelfieCapture::options.livenessAskSeconds);
  if (liveness.kind == LivenessVerdict::Kind::spoof) {
    view.verdict = Verdict::issue;
    view.issue = advice.showYourself;
  } else if (liveness.watchedFor >= patience && !showsLife(liveness)) {
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
  SelfieView told = view;
  demandLife(told);
  const bool changed = told.verdict != lastVerdict_ || told.issue != lastIssue_;
  lastVerdict_ = told.verdict;
  lastIssue_ = told.issue;
  if (changed) states.push_back(stateOf(told));
  if (view.verdict != Verdict::good) {
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
