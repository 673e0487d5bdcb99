#pragma once

#include <optional>

#include "corvana/IDCapture.h"
#include "corvana/SelfieCapture.h"
#include "engine/document/guidance/CardQuality.h"
#include "engine/recorder/RecorderObserver.h"
#include "engine/selfie/PersonCompare.h"

namespace corvana::engine {

/// The states of the delegates as events: their names, and what may be known of them without
/// telling who the person is.
RecorderEvent eventOf(const corvana::SelfieCaptureState& state);
RecorderEvent eventOf(const corvana::IDCaptureState& state);
/// A hint with what was measured and its limit.
RecorderEvent eventOf(const FlawFound& hint);
RecorderEvent eventOf(const FaceFlawFound& hint);

}  // namespace corvana::engine
