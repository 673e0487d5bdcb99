#pragma once

#include <opencv2/core.hpp>

namespace corvana::session {

/// The map of each of the film's pixels from one of places `step` pixels apart: in the middle of
/// their cells, with one cell more on each side than the picture needs.
cv::Mat fineMap(const cv::Mat& coarse, int step);

}  // namespace corvana::session
