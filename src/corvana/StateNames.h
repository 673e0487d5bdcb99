#pragma once

#include "corvana/IDCapture.h"
#include "corvana/SelfieCapture.h"
#include "corvana/VideoCapture.h"

/// Names for records and logs. A name tells the capture apart where both have a state of that kind:
/// "selfieMoveCloser" and "idMoveCloser".
namespace corvana {

/// "selfieCapture", "idCapture", "readingText", "liveFaceLost".
const char* nameOf(VideoCaptureMode mode);
const char* nameOf(const SelfieCaptureState& state);
const char* nameOf(const IDCaptureState& state);

}  // namespace corvana
