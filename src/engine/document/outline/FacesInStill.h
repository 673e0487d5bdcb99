#pragma once

#include <vector>

#include "engine/vision/FaceDetector.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// Where faces may be in a still, the surest first, at most three: at any turn, as small as they
/// are on a card that is a fifth of it. Costs some seconds. Pure.
std::vector<platform::CGRect> facesInStill(const platform::PixelBuffer& still, FaceDetector& faces);

}  // namespace corvana::engine
