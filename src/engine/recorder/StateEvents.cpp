#include "engine/recorder/StateEvents.h"

#include "corvana/StateNames.h"

namespace corvana::engine {
namespace {

using corvana::DetectedData;
using corvana::DocumentSide;
using corvana::IDCaptureState;
using corvana::SelfieCaptureState;
using Details = std::vector<RecorderEvent::Detail>;

Details detailsOf(const DetectedData& data) {
  Details details;
  if (data.type) details.emplace_back("type", *data.type);
  if (data.side) {
    details.emplace_back("side", *data.side == DocumentSide::front ? "front" : "back");
  }
  if (data.ocrStrings) {
    details.emplace_back("textLines", static_cast<double>(data.ocrStrings->size()));
  }
  details.emplace_back("mrz", data.mrz.has_value());
  details.emplace_back("photo", data.isPhotoPresent);
  if (data.realness) {
    details.emplace_back("photocopyScore", data.realness->photocopyScore);
    details.emplace_back("screenScore", data.realness->screenScore);
  }
  return details;
}

Details detailsOf(const SelfieCaptureState& state) {
  if (const auto* issue = std::get_if<SelfieCaptureState::DetectedIssue>(&state.value)) {
    return {{"issue", issue->message}};
  }
  if (const auto* success = std::get_if<SelfieCaptureState::Success>(&state.value)) {
    return {{"livenessScore", success->selfie.livenessScore}};
  }
  return {};
}

Details detailsOf(const IDCaptureState& state) {
  if (const auto* classified = std::get_if<IDCaptureState::ClassifiedDocument>(&state.value)) {
    return detailsOf(classified->data);
  }
  if (const auto* success = std::get_if<IDCaptureState::Success>(&state.value)) {
    return detailsOf(success->data);
  }
  return {};
}

RecorderEvent hintOf(const char* name, double value, double limit) {
  return {RecorderEvent::Kind::hint, name, {{"value", value}, {"threshold", limit}}};
}

}  // namespace

RecorderEvent eventOf(const SelfieCaptureState& state) {
  return {RecorderEvent::Kind::state, corvana::nameOf(state), detailsOf(state)};
}

RecorderEvent eventOf(const IDCaptureState& state) {
  return {RecorderEvent::Kind::state, corvana::nameOf(state), detailsOf(state)};
}

RecorderEvent eventOf(const FlawFound& hint) {
  return hintOf(nameOf(hint.flaw), hint.value, hint.limit);
}

RecorderEvent eventOf(const FaceFlawFound& hint) {
  return hintOf(nameOf(hint.flaw), hint.value, hint.limit);
}

}  // namespace corvana::engine
