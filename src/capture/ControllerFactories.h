#pragma once

#include "platform/uikit/UIStoryboard.h"

namespace capture {

/// Makes the module's controllers under their storyboard identifiers: what a host hands to the
/// storyboard "VideoCapture" that it lays out. Any thread.
platform::ControllerFactories controllerFactories();

}  // namespace capture
