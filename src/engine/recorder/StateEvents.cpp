#include "engine/recorder/StateEvents.h"

namespace engine {
namespace {

using corvana::DetectedData;
using corvana::DocumentSide;
using corvana::IDCaptureState;
using corvana::SelfieCaptureState;
using Kind = RecorderEvent::Kind;

std::vector<RecorderEvent::Detail> detailsOf(const DetectedData& data) {
  std::vector<RecorderEvent::Detail> details;
  if (data.type) details.emplace_back("type", *data.type);
  if (data.side) {
    details.emplace_back("side", data.side == DocumentSide::front ? "front" : "back");
  }
  if (data.ocrStrings) {
    details.emplace_back("textLines", static_cast<double>(data.ocrStrings->size()));
  }
  details.emplace_back("mrz", data.mrz.has_value());
  details.emplace_back("photo", data.isPhotoPresent);
  return details;
}

struct SelfieEvents {
  RecorderEvent operator()(const SelfieCaptureState::DetectedIssue& state) const {
    return {Kind::state, "detectedIssue", {{"issue", state.message}}};
  }
  RecorderEvent operator()(const SelfieCaptureState::Success& state) const {
    return {Kind::state, "selfieSuccess", {{"livenessScore", state.selfie.livenessScore}}};
  }
  RecorderEvent operator()(const SelfieCaptureState::TimedOut&) const {
    return named("selfieTimedOut");
  }
  RecorderEvent operator()(const SelfieCaptureState::Failed&) const {
    return named("selfieFailed");
  }
  RecorderEvent operator()(const SelfieCaptureState::DetectingFace&) const {
    return named("detectingFace");
  }
  RecorderEvent operator()(const SelfieCaptureState::MultipleFacesDetected&) const {
    return named("multipleFacesDetected");
  }
  RecorderEvent operator()(const SelfieCaptureState::MoveCloser&) const {
    return named("selfieMoveCloser");
  }
  RecorderEvent operator()(const SelfieCaptureState::MoveAway&) const {
    return named("selfieMoveAway");
  }
  RecorderEvent operator()(const SelfieCaptureState::AlignFace&) const {
    return named("alignFace");
  }
  RecorderEvent operator()(const SelfieCaptureState::CapturingFace&) const {
    return named("capturingFace");
  }
  static RecorderEvent named(const char* name) { return {Kind::state, name, {}}; }
};

struct DocumentEvents {
  RecorderEvent operator()(const IDCaptureState::DetectingBox&) const {
    return named("detectingBox");
  }
  RecorderEvent operator()(const IDCaptureState::DetectedBox&) const {
    return named("detectedBox");
  }
  RecorderEvent operator()(const IDCaptureState::ClassifiedDocument& state) const {
    return {Kind::state, "classifiedDocument", detailsOf(state.data)};
  }
  RecorderEvent operator()(const IDCaptureState::Success& state) const {
    return {Kind::state, "idSuccess", detailsOf(state.data)};
  }
  RecorderEvent operator()(const IDCaptureState::TimedOut&) const { return named("idTimedOut"); }
  RecorderEvent operator()(const IDCaptureState::Failed&) const { return named("idFailed"); }
  RecorderEvent operator()(const IDCaptureState::Autofill&) const { return named("autofill"); }
  RecorderEvent operator()(const IDCaptureState::TooMuchGlare&) const {
    return named("tooMuchGlare");
  }
  RecorderEvent operator()(const IDCaptureState::MoveCloser&) const {
    return named("idMoveCloser");
  }
  RecorderEvent operator()(const IDCaptureState::MoveAway&) const { return named("idMoveAway"); }
  RecorderEvent operator()(const IDCaptureState::AlignRectangle&) const {
    return named("alignRectangle");
  }
  static RecorderEvent named(const char* name) { return {Kind::state, name, {}}; }
};

}  // namespace

RecorderEvent eventOf(const SelfieCaptureState& state) {
  return std::visit(SelfieEvents{}, state.value);
}

RecorderEvent eventOf(const IDCaptureState& state) {
  return std::visit(DocumentEvents{}, state.value);
}

}  // namespace engine
