#include "Light.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include <opencv2/imgproc.hpp>

#include "Angles.h"
#include "Ease.h"

namespace corvana::photos {
namespace {

using session::ease;
using session::kDegree;
using session::Random;

constexpr int kCoarse = 8;  // light changes slowly: an eighth of the pixels tells it
constexpr int kNoiseTile = 512;

double along(cv::Point2d point, double degrees) {
  return point.x * std::cos(degrees * kDegree) + point.y * std::sin(degrees * kDegree);
}

/// Light at a point given from the middle in widths of the photograph.
double lightAt(cv::Point2d point, const Conditions& conditions) {
  double light = conditions.gain * (1.0 - conditions.fall * along(point, conditions.fallAngle));
  const double beyond = along(point, conditions.shadowAngle) - conditions.shadowPlace;
  light *= 1.0 - conditions.shadow * ease(beyond, -0.03, 0.03);
  return std::max(0.1, light);
}

double glareAt(cv::Point2d pixel, const Conditions& conditions, const View& view) {
  if (!conditions.glare) return 0.0;
  const double far = cv::norm(pixel - view.at(conditions.glare->centre));
  const double radius = conditions.glare->radius * view.scale();
  return conditions.glare->strength * std::exp(-2.5 * far * far / (radius * radius));
}

/// Gain of the three channels in 0 to 2, and glare in the fourth.
cv::Mat lightField(cv::Size size, const Conditions& conditions, const View& view) {
  cv::Mat coarse(size.height / kCoarse + 2, size.width / kCoarse + 2, CV_32FC4);
  for (int row = 0; row < coarse.rows; ++row)
    for (int column = 0; column < coarse.cols; ++column) {
      const cv::Point2d pixel((column + 0.5) * kCoarse, (row + 0.5) * kCoarse);
      const cv::Point2d place = (pixel - 0.5 * cv::Point2d(size.width, size.height)) / size.width;
      const auto light = static_cast<float>(lightAt(place, conditions));
      const auto warmth = static_cast<float>(0.06 * conditions.warmth);
      coarse.at<cv::Vec4f>(row, column) =
          cv::Vec4f(light * (1.0F + warmth), light, light * (1.0F - 1.6F * warmth),
                    static_cast<float>(glareAt(pixel, conditions, view)));
    }
  cv::Mat fine;
  cv::resize(coarse, fine, {coarse.cols * kCoarse, coarse.rows * kCoarse}, 0, 0, cv::INTER_LINEAR);
  return fine(cv::Rect({0, 0}, size));
}

/// A line through the middle, as a moving hand smears every point.
cv::Mat smear(double length, double degrees) {
  const int half = static_cast<int>(std::ceil(0.5 * length)) + 1;
  cv::Mat kernel = cv::Mat::zeros(2 * half + 1, 2 * half + 1, CV_32FC1);
  constexpr int kSteps = 64;
  for (int i = 0; i < kSteps; ++i) {
    const double t = length * ((i + 0.5) / kSteps - 0.5);
    const double x = half + t * std::cos(degrees * kDegree);
    const double y = half + t * std::sin(degrees * kDegree);
    const int left = static_cast<int>(x), top = static_cast<int>(y);
    for (int dy = 0; dy < 2; ++dy)
      for (int dx = 0; dx < 2; ++dx)
        kernel.at<float>(top + dy, left + dx) +=
            static_cast<float>((1.0 - std::abs(x - left - dx)) * (1.0 - std::abs(y - top - dy)));
  }
  return kernel / cv::sum(kernel)[0];
}

const cv::Mat& noiseTile() {
  static const cv::Mat kTile = [] {
    Random random(20);
    cv::Mat noise(kNoiseTile, kNoiseTile, CV_32FC3);
    for (int row = 0; row < noise.rows; ++row)
      for (int column = 0; column < noise.cols; ++column) {
        const double grey = random.normal();
        for (int channel = 0; channel < 3; ++channel)
          noise.at<cv::Vec3f>(row, column)[channel] =
              static_cast<float>(0.85 * grey + 0.5 * random.normal());
      }
    return noise;
  }();
  return kTile;
}

}  // namespace

void shine(cv::Mat& picture, const Conditions& conditions, const View& view) {
  const cv::Mat field = lightField(picture.size(), conditions, view);
  for (int row = 0; row < picture.rows; ++row) {
    auto* pixels = picture.ptr<cv::Vec3b>(row);
    const auto* light = field.ptr<cv::Vec4f>(row);
    for (int column = 0; column < picture.cols; ++column)
      for (int channel = 0; channel < 3; ++channel) {
        const float lit = static_cast<float>(pixels[column][channel]) * light[column][channel];
        pixels[column][channel] = cv::saturate_cast<std::uint8_t>(
            lit + (255.0F - std::min(lit, 255.0F)) * light[column][3]);
      }
  }
}

void expose(cv::Mat& picture, const Conditions& conditions, Random& random) {
  if (conditions.motion > 0.0)
    cv::filter2D(picture, picture, -1, smear(conditions.motion, conditions.motionAngle));
  if (conditions.defocus > 0.2) cv::GaussianBlur(picture, picture, {}, conditions.defocus);
  const cv::Mat& noise = noiseTile();
  const int right = static_cast<int>(random.uniform(0, kNoiseTile));
  const int down = static_cast<int>(random.uniform(0, kNoiseTile));
  const auto strength = static_cast<float>(conditions.noise);
  for (int row = 0; row < picture.rows; ++row) {
    auto* pixels = picture.ptr<cv::Vec3b>(row);
    const auto* grains = noise.ptr<cv::Vec3f>((row + down) % kNoiseTile);
    for (int column = 0; column < picture.cols; ++column)
      for (int channel = 0; channel < 3; ++channel)
        pixels[column][channel] = cv::saturate_cast<std::uint8_t>(
            static_cast<float>(pixels[column][channel]) +
            strength * grains[(column + right) % kNoiseTile][channel]);
  }
}

}  // namespace corvana::photos
