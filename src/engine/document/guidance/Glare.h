#pragma once

#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// Share of a straightened card lost in glare, 0 to 1: white patches that fade into what surrounds
/// them and hide print. There is none where print still stands on a light ground, or where that
/// gets darker but slowly beyond its edge: it is paper in strong light. Glare on such paper is not
/// told.
double glareFraction(const platform::PixelBuffer& card);

/// Whether a straightened card's grey picture has patches as bright as glare. Without any there is
/// none, and its colours need not be asked.
bool mayHaveGlare(const platform::PixelBuffer& grayCard);

}  // namespace corvana::engine
