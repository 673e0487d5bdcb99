#include "engine/document/text/LineCrop.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <opencv2/imgproc.hpp>

namespace corvana::engine {
namespace {

constexpr int kLeastWidth = 8;
constexpr int kMostWidth = 1600;

}  // namespace

cv::RotatedRect boxOf(const TextLine& line, double more) {
  return {{static_cast<float>(line.box.midX()), static_cast<float>(line.box.midY())},
          {static_cast<float>(line.box.width + more), static_cast<float>(line.box.height + more)},
          static_cast<float>(line.tilt)};
}

cv::Mat lineCrop(const cv::Mat& rgb, const cv::RotatedRect& box) {
  const double width = std::ceil(box.size.width * kLineHeight / box.size.height);
  const int columns = static_cast<int>(std::clamp<double>(width, kLeastWidth, kMostWidth));
  std::array<cv::Point2f, 4> corners;  // from the bottom left clockwise
  box.points(corners.data());
  const std::array<cv::Point2f, 3> from{corners[1], corners[2], corners[0]};
  const auto right = static_cast<float>(columns);
  const std::array<cv::Point2f, 3> to{cv::Point2f(0, 0), cv::Point2f(right, 0),
                                      cv::Point2f(0, kLineHeight)};
  cv::Mat line;
  cv::warpAffine(rgb, line, cv::getAffineTransform(from.data(), to.data()), {columns, kLineHeight},
                 cv::INTER_LINEAR, cv::BORDER_REPLICATE);
  return line;
}

}  // namespace corvana::engine
