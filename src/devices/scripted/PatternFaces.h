#pragma once

#include "platform/uikit/UIImage.h"

namespace devices {

/// How many pattern faces there are.
inline constexpr int kPatternFaces = 8;

/// A stand-in for the face of a person, 160×160: the same number gives the same picture in a new
/// object. Coarse enough that whitening, scaling and a face model leave different numbers apart.
platform::UIImageRef patternFace(int person);

}  // namespace devices
