#pragma once

#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"

/// Operations on whole pictures, and the measures of their quality. Pure and free of threads; every
/// pixel format goes in.
namespace corvana::engine {

/// The picture itself if it is rgb24, else converted (i420 as BT.601, limited range).
platform::PixelBufferRef rgbPicture(const platform::PixelBufferRef& picture);

/// The picture's luma, full range: itself if it is gray8. Whoever measures a picture more than once
/// takes this first.
platform::PixelBufferRef grayPicture(const platform::PixelBufferRef& picture);

/// The part of the picture inside the rectangle, as rgb24; null when nothing of it lies inside.
platform::PixelBufferRef cropped(const platform::PixelBuffer& picture,
                                 const platform::CGRect& rect);

/// The picture at another size, as rgb24: area average when smaller, bilinear when larger.
platform::PixelBufferRef resized(const platform::PixelBuffer& picture, int width, int height);

/// Side in pixels to which `sharpness` brings the region's longer side before it measures, so that
/// the value does not depend on how near the camera is. Larger than most faces: never scaled up.
inline constexpr int kSharpnessSide = 160;

/// Variance of the Laplacian of the luma inside the rectangle; 0 for an empty one. Comparable only
/// between regions of like content: faces with faces, cards with cards.
double sharpness(const platform::PixelBuffer& picture, const platform::CGRect& rect);

struct Luma {
  double mean = 0;       ///< 0 (black) to 255 (white)
  double deviation = 0;  ///< standard deviation, in the same unit
};

/// Brightness and contrast inside the rectangle; zeros for an empty one.
Luma luma(const platform::PixelBuffer& picture, const platform::CGRect& rect);

}  // namespace corvana::engine
