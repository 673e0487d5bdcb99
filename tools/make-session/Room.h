#pragma once

#include <opencv2/core.hpp>

namespace corvana::session {

/// The portrait enlarged and set into a room: a picture of `size` (RGB) in which the portrait's
/// point p comes to lie at scale · p + shift. Beyond the portrait's edges its colours run out into
/// a blurred wall.
cv::Mat setIntoRoom(const cv::Mat& portrait, double scale, cv::Point2d shift, cv::Size size);

}  // namespace corvana::session
