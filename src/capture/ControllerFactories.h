#pragma once

#include "platform/uikit/UIStoryboard.h"

namespace corvana {
class DecisionObserver;
class HostFactories;
}  // namespace corvana

namespace corvana::capture {

/// Makes the module's controllers under their storyboard identifiers: what a host hands to the
/// storyboard "VideoCapture" that it lays out. `host` makes the camera and the recorder of each
/// screen, `decisions` is told what the screen judged and how; null when nobody keeps a record.
/// Both outlive the screens. Any thread.
platform::ControllerFactories controllerFactories(corvana::HostFactories& host,
                                                  corvana::DecisionObserver* decisions = nullptr);

}  // namespace corvana::capture
