#pragma once

#include <opencv2/core.hpp>

#include "Random.h"

/// How the light lies on a ground, which is no even colour.
namespace corvana::photos {

/// Numbers around zero, alike over about `across` by `along` pixels, of standard deviation one.
cv::Mat unevenness(cv::Size size, double across, double along, session::Random& random);

/// The colour lightened and darkened: each pixel is colour · light.
cv::Mat coloured(const cv::Mat& light, const cv::Scalar& colour);

/// The picture lightened and darkened.
cv::Mat lit(const cv::Mat& picture, const cv::Mat& light);

}  // namespace corvana::photos
