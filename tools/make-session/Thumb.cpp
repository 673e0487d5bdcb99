#include "Thumb.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "Ease.h"

namespace corvana::session {
namespace {

constexpr int kThumbPixels = 160;
constexpr int kThumbLength = 760;

/// Half the thumb's width at a distance from its tip, both in thumb widths.
double outline(double y) {
  if (y < 0.42) return 0.47 * std::sqrt(std::max(0.0, 1.0 - std::pow(1.0 - y / 0.42, 2.2)));
  return 0.47 - 0.03 * ease(y, 0.42, 1.0) + 0.07 * ease(y, 1.1, 2.4);
}

/// How far inside the nail, about 0 at its rim.
double nail(double x, double y) {
  const double across = std::abs(x) / 0.33;
  const double along = std::abs(y - 0.46) / 0.36;
  return 1.0 - std::pow(std::pow(across, 3.0) + std::pow(along, 3.0), 1.0 / 3.0);
}

cv::Vec4b thumbPixel(double x, double y, const cv::Scalar& skin) {
  const double half = outline(y);
  const double alpha = std::clamp((half - std::abs(x)) * kThumbPixels, 0.0, 1.0);
  const double side = half > 0 ? std::min(1.0, std::abs(x + 0.06) / half) : 1.0;
  double light = 1.04 - 0.36 * side * side - 0.10 * ease(0.15 - y, 0.0, 0.15);
  light -= 0.05 * std::exp(-std::pow((y - 1.15) / 0.05, 2.0));  // crease of the joint
  const double inNail = nail(x, y);
  const double gloss = ease(inNail, 0.0, 0.06);
  light += 0.10 * gloss - 0.10 * std::exp(-std::pow(inNail / 0.03, 2.0));
  const cv::Scalar tint(1.0, 1.0 - 0.03 * gloss, 1.0 + 0.03 * gloss);
  cv::Vec4b pixel;
  for (int channel = 0; channel < 3; ++channel)
    pixel[channel] = cv::saturate_cast<std::uint8_t>(skin[channel] * light * tint[channel]);
  pixel[3] = cv::saturate_cast<std::uint8_t>(255.0 * alpha);
  return pixel;
}

}  // namespace

cv::Mat drawThumb(const cv::Scalar& skin) {
  cv::Mat thumb(kThumbLength, kThumbPixels, CV_8UC4);
  for (int row = 0; row < thumb.rows; ++row)
    for (int column = 0; column < thumb.cols; ++column)
      thumb.at<cv::Vec4b>(row, column) =
          thumbPixel((column + 0.5) / kThumbPixels - 0.5, (row + 0.5) / kThumbPixels, skin);
  return thumb;
}

}  // namespace corvana::session
