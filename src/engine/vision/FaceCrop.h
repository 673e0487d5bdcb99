#pragma once

#include "engine/vision/Face.h"
#include "platform/media/PixelBuffer.h"
#include "platform/uikit/UIImage.h"

namespace corvana::engine {

/// Faces narrower than this, in pixels, are not cropped: below it the matcher's distances of one
/// person's pictures begin to reach those of strangers.
inline constexpr double kLeastFaceWidth = 80;

/// The face brought to the matcher's pose: a square in which eyes and mouth lie at fixed places, as
/// near as moving, turning and scaling can bring them. The square has the face's own resolution
/// (about 1.1 times the box); what sticks out of the picture repeats its edge. Null for a face
/// narrower than `kLeastFaceWidth` or without distinct eyes.
platform::UIImageRef cropFace(const platform::PixelBuffer& picture, const Face& face);

}  // namespace corvana::engine
