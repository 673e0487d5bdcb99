#include "engine/recorder/SelfiePhase.h"

namespace corvana::engine {
namespace {

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

}  // namespace

void SelfiePhase::remember(const SelfieView& view) {
  if (!view.selfie || (best_ && view.sharpness <= bestSharpness_)) return;
  best_ = view.selfie;
  bestSharpness_ = view.sharpness;
}

std::vector<SelfieCaptureState> SelfiePhase::judge(const SelfieView& view,
                                                   platform::TimePoint now) {
  std::vector<SelfieCaptureState> states;
  const bool changed = view.verdict != lastVerdict_ || view.issue != lastIssue_;
  lastVerdict_ = view.verdict;
  lastIssue_ = view.issue;
  if (changed) states.push_back(stateOf(view));
  if (view.verdict != Verdict::good) {
    goodSince_.reset();
    best_.reset();
    return states;
  }
  remember(view);
  if (!goodSince_) goodSince_ = now;
  const bool steady = now - *goodSince_ >= kSteadyTime;
  const bool due = !lastSuccess_ || now - *lastSuccess_ >= kSuccessInterval;
  if (!steady || !due || !best_ || now < earliestSuccess_) return states;
  lastSuccess_ = now;
  states.push_back({SelfieCaptureState::Success{*best_}});
  // The next success shows another picture of the face, in case this one was refused.
  best_.reset();
  return states;
}

}  // namespace corvana::engine
