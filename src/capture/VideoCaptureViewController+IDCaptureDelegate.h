#pragma once

#include "platform/Environment.h"
#include "platform/uikit/UIImage.h"

namespace corvana::capture {

/// The outline that shows which side of the card is wanted: the host's, else the module's own
/// drawing. Looked up anew at each call; null when there is neither.
platform::UIImageRef frontOverlay(platform::Environment& environment);
platform::UIImageRef backOverlay(platform::Environment& environment);

}  // namespace corvana::capture
