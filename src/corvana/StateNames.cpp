#include "corvana/StateNames.h"

#include <array>

namespace corvana {

const char* nameOf(VideoCaptureMode mode) {
  switch (mode) {
    case VideoCaptureMode::selfieCapture:
      return "selfieCapture";
    case VideoCaptureMode::idCapture:
      return "idCapture";
    case VideoCaptureMode::readingText:
      return "readingText";
    case VideoCaptureMode::liveFaceLost:
      return "liveFaceLost";
  }
  return "unknown";
}

const char* nameOf(const SelfieCaptureState& state) {
  static constexpr std::array kNames = {
      "detectedIssue", "selfieSuccess",         "selfieTimedOut",   "selfieFailed",
      "detectingFace", "multipleFacesDetected", "selfieMoveCloser", "selfieMoveAway",
      "alignFace",     "capturingFace"};
  static_assert(kNames.size() == std::variant_size_v<SelfieCaptureState::Value>);
  return kNames[state.value.index()];
}

const char* nameOf(const IDCaptureState& state) {
  static constexpr std::array kNames = {"detectingBox", "detectedBox",   "classifiedDocument",
                                        "idSuccess",    "idTimedOut",    "idFailed",
                                        "autofill",     "tooMuchGlare",  "idMoveCloser",
                                        "idMoveAway",   "alignRectangle"};
  static_assert(kNames.size() == std::variant_size_v<IDCaptureState::Value>);
  return kNames[state.value.index()];
}

}  // namespace corvana
