#pragma once

#include <opencv2/core.hpp>

#include "Random.h"

/// Grounds that are found out of doors; as paintGround, whose names they bear.
namespace corvana::photos {

cv::Mat bricks(cv::Size size, double scale, session::Random& random);
cv::Mat grass(cv::Size size, double scale, session::Random& random);
cv::Mat mosaic(cv::Size size, double scale, session::Random& random);

}  // namespace corvana::photos
