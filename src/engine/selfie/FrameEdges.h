#pragma once

#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// How far straight edges on the left, on the right and below enclose a face, as those of a sheet
/// or a display do: the share of the least complete one that is seen, 0 to 1. Below a living
/// person's chin the body hides what stands behind.
double edgesAround(const platform::PixelBuffer& picture, const platform::CGRect& face);

}  // namespace corvana::engine
