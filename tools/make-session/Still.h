#pragma once

#include <opencv2/core.hpp>

#include "Random.h"

namespace corvana::session {

/// A photo of a card side (RGBA) lying on a table, as a person takes it: a little turned, not quite
/// from above, with the table around it. RGB, 1400 pixels wide.
cv::Mat photographed(const cv::Mat& card, Random& random);

}  // namespace corvana::session
