#pragma once

#include <opencv2/core.hpp>

#include "Random.h"

/// What lies about in rooms and on laps; as paintGround, whose names they bear.
namespace corvana::photos {

cv::Mat denim(cv::Size size, double scale, session::Random& random);
cv::Mat keyboard(cv::Size size, double scale, session::Random& random);
cv::Mat cardboard(cv::Size size, double scale, session::Random& random);

}  // namespace corvana::photos
