#pragma once

#include "corvana/IDCapture.h"
#include "corvana/SelfieCapture.h"
#include "engine/recorder/RecorderObserver.h"

namespace corvana::engine {

/// The states of the delegates as events: their names, and what may be known of them without
/// telling who the person is.
RecorderEvent eventOf(const corvana::SelfieCaptureState& state);
RecorderEvent eventOf(const corvana::IDCaptureState& state);

}  // namespace corvana::engine
