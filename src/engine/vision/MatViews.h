#pragma once

#include <opencv2/core.hpp>

#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"

/// Bridges between the system's pictures and OpenCV's, for the engine's source files only: no
/// public header includes this one.
namespace corvana::engine {

/// The picture as 8-bit RGB. Shares the bytes of an rgb24 picture: read it, never write it, and
/// keep the picture alive.
cv::Mat rgbMat(const platform::PixelBuffer& picture);

/// The picture's luma, full range 0 to 255. Shares the bytes of a gray8 picture: read it, never
/// write it, and keep the picture alive.
cv::Mat grayMat(const platform::PixelBuffer& picture);

/// The luma of a part that lies inside the picture.
cv::Mat grayMat(const platform::PixelBuffer& picture, const cv::Rect& part);

/// A copy of an 8-bit matrix of three (RGB) or one channel (grey) as an rgb24 or gray8 picture.
platform::PixelBufferRef pixelBufferFrom(const cv::Mat& mat);

/// The rectangle rounded outwards to whole pixels and cut at the picture's edges; may be empty.
cv::Rect pixelRect(const platform::CGRect& rect, cv::Size picture);

platform::CGRect rectOf(const cv::Rect& rect);

}  // namespace corvana::engine
