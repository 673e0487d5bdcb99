#include "GroundLight.h"

#include <algorithm>
#include <array>

#include <opencv2/imgproc.hpp>

namespace corvana::photos {

cv::Mat unevenness(cv::Size size, double across, double along, session::Random& random) {
  const int stepX = std::max(1, static_cast<int>(along / 2.0));
  const int stepY = std::max(1, static_cast<int>(across / 2.0));
  cv::Mat coarse(size.height / stepY + 8, size.width / stepX + 8, CV_32FC1);
  for (int row = 0; row < coarse.rows; ++row)
    for (int column = 0; column < coarse.cols; ++column)
      coarse.at<float>(row, column) = static_cast<float>(random.normal());
  cv::Mat fine;
  cv::resize(coarse, fine, size, 0, 0, cv::INTER_CUBIC);
  return fine;
}

cv::Mat coloured(const cv::Mat& light, const cv::Scalar& colour) {
  std::array<cv::Mat, 3> channels;
  for (int i = 0; i < 3; ++i)
    light.convertTo(channels[static_cast<std::size_t>(i)], CV_8UC1, colour[i]);
  cv::Mat picture;
  cv::merge(channels.data(), 3, picture);
  return picture;
}

cv::Mat lit(const cv::Mat& picture, const cv::Mat& light) {
  std::array<cv::Mat, 3> channels;
  cv::split(picture, channels.data());
  for (cv::Mat& channel : channels)
    cv::multiply(channel, light, channel, 1.0, CV_8UC1);
  cv::Mat result;
  cv::merge(channels.data(), 3, result);
  return result;
}

}  // namespace corvana::photos
