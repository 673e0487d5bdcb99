#pragma once

#include <memory>

#include "platform/foundation/DrivenLoop.h"

namespace corvana::app {

/// Whose time a run lives in: that of the recording, as fast as the machine can, or the wall
/// clock's.
enum class TimeKind { media, real };

/// The loop of a run without a window.
std::unique_ptr<platform::DrivenLoop> makeLoop(TimeKind kind);

}  // namespace corvana::app
