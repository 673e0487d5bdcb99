#pragma once

#include "platform/geometry/Geometry.h"
#include "platform/uikit/CALayer.h"

namespace corvana {

/// Maps a rectangle of an image of size `from` onto a view of size `to` that the image fills, its
/// aspect kept and the overhang cut evenly. An empty `from` gives an empty rectangle.
platform::CGRect aspectFill(const platform::CGRect& rect, const platform::CGSize& from,
                            const platform::CGSize& to);
/// The same for a view in which the whole image is shown, centred.
platform::CGRect aspectFit(const platform::CGRect& rect, const platform::CGSize& from,
                           const platform::CGSize& to);

/// Removes the shape layers directly below `layer`, not those deeper down: the screen's outlines go
/// and the face ellipse, which has a container of its own, stays.
void removeShapeSublayers(platform::CALayer& layer);
/// Adds the outline of a rectangle, 2 points wide.
void draw(platform::CALayer& layer, const platform::CGRect& rect, const platform::UIColor& color);

}  // namespace corvana
