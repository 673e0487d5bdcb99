#pragma once

#include <memory>

#include "platform/uikit/UIImage.h"

namespace corvana {

/// A live face that selfie capture accepted.
struct Selfie {
  /// The whole camera picture, upright, not mirrored.
  platform::UIImageRef image;
  /// The face, cropped for the face matcher.
  platform::UIImageRef faceImage;
  /// 0 (sure to be a picture) to 1 (sure to be alive).
  float livenessScore = 0;
};

}  // namespace corvana
