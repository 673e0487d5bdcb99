#pragma once

#include <optional>

#include "corvana/IDCapture.h"
#include "corvana/SelfieCapture.h"
#include "engine/document/guidance/CardQuality.h"
#include "engine/recorder/RecorderObserver.h"

namespace corvana::engine {

/// The states of the delegates as events: their names, and what may be known of them without
/// telling who the person is.
RecorderEvent eventOf(const corvana::SelfieCaptureState& state);
RecorderEvent eventOf(const corvana::IDCaptureState& state);
/// A hint with what was measured and its limit; "none" when there is none any more.
RecorderEvent eventOf(const std::optional<FlawFound>& hint);

}  // namespace corvana::engine
