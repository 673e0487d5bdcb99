#include "Still.h"

#include <array>
#include <cmath>
#include <cstdint>

#include <opencv2/imgproc.hpp>

#include "CardView.h"

namespace corvana::session {
namespace {

const cv::Size kStill(1400, 1000);
constexpr double kCardWidth = 1150.0;

/// Dark wood: grain along the table, light from one side.
cv::Mat table(Random& random) {
  cv::Mat grain(kStill.height, kStill.width / 8, CV_32FC1);
  for (int row = 0; row < grain.rows; ++row)
    for (int column = 0; column < grain.cols; ++column)
      grain.at<float>(row, column) = static_cast<float>(random.normal());
  cv::GaussianBlur(grain, grain, {}, 12.0, 1.6);
  cv::resize(grain, grain, kStill, 0, 0, cv::INTER_LINEAR);
  const Wobble bands(random, 0.004);
  const cv::Vec3d wood(104, 74, 52);
  cv::Mat picture(kStill, CV_8UC3);
  for (int row = 0; row < picture.rows; ++row)
    for (int column = 0; column < picture.cols; ++column) {
      const double light = 1.0 + 0.5 * static_cast<double>(grain.at<float>(row, column)) +
                           0.10 * bands.at(row) - 0.12 * column / picture.cols;
      for (int channel = 0; channel < 3; ++channel)
        picture.at<cv::Vec3b>(row, column)[channel] =
            cv::saturate_cast<std::uint8_t>(wood[channel] * light);
    }
  return picture;
}

std::array<cv::Point2f, 4> cornersOnTable(const cv::Mat& card, Random& random) {
  const double angle =
      random.uniform(1.5, 4.0) * (random.uniform(0, 1) < 0.5 ? -1 : 1) * CV_PI / 180;
  const double lean = random.uniform(-0.035, 0.035);  // far edge a little shorter
  const double w = 0.5 * kCardWidth;
  const double h = w * card.rows / card.cols;
  const cv::Point2d centre(0.5 * kStill.width + random.uniform(-25, 25),
                           0.5 * kStill.height + random.uniform(-25, 25));
  const auto place = [&](double x, double y) {
    const double near = 1.0 + lean * y / h;
    const double px = x * near, py = y * near;
    return cv::Point2f(centre + cv::Point2d(std::cos(angle) * px - std::sin(angle) * py,
                                            std::sin(angle) * px + std::cos(angle) * py));
  };
  return {place(-w, -h), place(w, -h), place(w, h), place(-w, h)};
}

void addNoise(cv::Mat& picture, Random& random) {
  for (int row = 0; row < picture.rows; ++row) {
    cv::Vec3b* pixels = picture.ptr<cv::Vec3b>(row);
    for (int column = 0; column < picture.cols; ++column) {
      const double noise = 1.2 * random.normal();
      for (int channel = 0; channel < 3; ++channel)
        pixels[column][channel] = cv::saturate_cast<std::uint8_t>(pixels[column][channel] + noise);
    }
  }
}

}  // namespace

cv::Mat photographed(const cv::Mat& card, Random& random) {
  cv::Mat picture = table(random);
  std::array<cv::Point2f, 4> corners = cornersOnTable(card, random);
  cv::Mat small;
  cv::resize(card, small, {}, 1.1 * kCardWidth / card.cols, 1.1 * kCardWidth / card.cols,
             cv::INTER_AREA);

  cv::Mat shadow(card.size(), CV_8UC4, cv::Scalar(0, 0, 0, 110));
  cv::Mat shaded = picture.clone();
  std::array<cv::Point2f, 4> fallen = corners;
  for (cv::Point2f& corner : fallen)
    corner += cv::Point2f(7.0F, 9.0F);
  layOver(shaded, shadow, fallen, 1.0);
  cv::GaussianBlur(shaded, picture, {}, 2.5);

  layOver(picture, small, corners, 0.97);
  cv::GaussianBlur(picture, picture, {}, 0.6);
  addNoise(picture, random);
  return picture;
}

}  // namespace corvana::session
