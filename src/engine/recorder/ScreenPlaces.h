#pragma once

#include "platform/geometry/Geometry.h"

namespace corvana::engine {

/// Where the screen asks for face and card, in points: what is right before one screen may be too
/// far or too near before another.
struct ScreenPlaces {
  platform::CGSize screen;
  platform::CGRect face;
  platform::CGRect card;
};

}  // namespace corvana::engine
