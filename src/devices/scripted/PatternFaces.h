#pragma once

#include "platform/uikit/UIImage.h"

namespace corvana::devices {

/// How many pattern faces there are.
inline constexpr int kPatternFaces = 2;

/// A stand-in for the face of a person, 160×160: the same number gives the same picture in a new
/// object. The pictures show no faces, but the face model keeps them apart: their embeddings are
/// 0.50 from each other.
platform::UIImageRef patternFace(int person);

}  // namespace corvana::devices
