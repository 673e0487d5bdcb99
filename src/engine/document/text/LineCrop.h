#pragma once

#include <opencv2/core.hpp>

#include "engine/document/text/TextReader.h"

namespace corvana::engine {

/// Height of a line of print as the networks see it.
inline constexpr int kLineHeight = 48;

/// The box of a line on a straightened card, with as many pixels more in width and height.
cv::RotatedRect boxOf(const TextLine& line, double more);

/// The line of print inside the box of an 8-bit picture, level, `kLineHeight` high; lines longer
/// than the networks can see are squeezed.
cv::Mat lineCrop(const cv::Mat& rgb, const cv::RotatedRect& box);

}  // namespace corvana::engine
