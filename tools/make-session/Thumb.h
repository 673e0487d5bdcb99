#pragma once

#include <opencv2/core.hpp>

namespace corvana::session {

/// A thumb that points upwards, seen from above: RGBA, its tip at the upper edge, as wide as the
/// picture.
cv::Mat drawThumb(const cv::Scalar& skin);

}  // namespace corvana::session
