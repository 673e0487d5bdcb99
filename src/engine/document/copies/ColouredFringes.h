#pragma once

#include <opencv2/core.hpp>

namespace corvana::engine {

/// Strength of a regular pattern all over a straightened card (8-bit RGB) in which green follows
/// red and blue follows green, in shares of the brightness; 0 when there is none. The points of a
/// display lie side by side by colour, so the bands that they form with a sensor's points follow
/// each other as well; printed patterns change all colours together, and what is painted in one
/// place only is no pattern.
double colouredFringes(const cv::Mat& rgb);

}  // namespace corvana::engine
