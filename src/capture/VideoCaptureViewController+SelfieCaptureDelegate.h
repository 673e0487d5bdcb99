#pragma once

#include "platform/geometry/Geometry.h"

namespace corvana::capture {

/// The rectangle reflected about the vertical centre line of `size`, as a front camera's picture is
/// shown.
platform::CGRect mirrored(const platform::CGRect& rect, const platform::CGSize& size);

}  // namespace corvana::capture
