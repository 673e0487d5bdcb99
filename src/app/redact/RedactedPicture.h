#pragma once

#include <optional>

#include "engine/redaction/HeadFinder.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::app {

/// A single picture (rgb24) of which nothing is shown but the head whose face lies there, and
/// nothing at all without one or where not even the face is to be seen.
platform::PixelBufferRef redactedPicture(const platform::PixelBuffer& picture,
                                         const std::optional<platform::CGRect>& face,
                                         engine::HeadFinder& heads, bool coversFace);

}  // namespace corvana::app
