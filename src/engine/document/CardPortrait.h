#pragma once

#include "engine/vision/Face.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"
#include "platform/uikit/UIImage.h"

/// The photo of its holder on a straightened card. Pure.
namespace corvana::engine {

/// The photo around a face that measures from brow to chin: as on passports, where the head takes
/// about half the width and two thirds of the height.
platform::CGRect photoAround(const platform::CGRect& face);

/// The face for the matcher. A photo printed small is scaled up first: the matcher refuses faces by
/// their pixels, of which a straightened card has more than the camera saw anyway. Null where the
/// face is smaller still.
platform::UIImageRef faceImageOf(const platform::PixelBuffer& card, const Face& face);

/// The detector also finds faces that lie on their side or their head.
bool isUpright(const Face& face);

}  // namespace corvana::engine
