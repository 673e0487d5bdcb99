#include <algorithm>
#include <cmath>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "GroundLight.h"
#include "GroundPainters.h"
#include "People.h"

namespace corvana::photos {

using session::Random;

/// Bricks in rows, each row set off against the next, with pale mortar between them.
cv::Mat bricks(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {156, 84, 64}, {132, 70, 58}, {178, 106, 80}, {120, 96, 84}};
  const cv::Size2d brick(random.uniform(30.0, 52.0) * scale, random.uniform(9.0, 15.0) * scale);
  const double joint = random.uniform(0.8, 1.8) * scale;
  cv::Mat picture(size, CV_8UC3, cv::Scalar(190, 184, 172));
  for (double y = -brick.height; y < size.height; y += brick.height) {
    for (double x = -random.uniform(0.3, 1.0) * brick.width; x < size.width; x += brick.width) {
      const cv::Rect2d place(x, y, brick.width - joint, brick.height - joint);
      cv::rectangle(picture, cv::Rect(place), drawFrom(kColours, random), cv::FILLED);
    }
  }
  return lit(picture, 1.0 + 0.10 * unevenness(size, 0.6 * scale, 0.6 * scale, random));
}

/// Mown grass: blades of several greens, thick and thin, that lie over each other in all
/// directions.
cv::Mat grass(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {74, 108, 44}, {104, 142, 60}, {52, 82, 38}, {142, 160, 84}, {168, 158, 104}};
  cv::Mat picture(size, CV_8UC3, cv::Scalar(40, 52, 28));
  const double blades = size.area() / (3.0 * scale * scale);
  for (int i = 0; i < blades; ++i) {
    const cv::Point2d root(random.uniform(0.0, size.width), random.uniform(0.0, size.height));
    const double angle = random.uniform(0.0, 2.0 * CV_PI);
    const double length = random.uniform(3.0, 16.0) * scale;
    const cv::Point2d tip = root + length * cv::Point2d(std::cos(angle), std::sin(angle));
    const int width = std::max(1, static_cast<int>(random.uniform(0.4, 1.5) * scale));
    const cv::Scalar colour = drawFrom(kColours, random) * random.uniform(0.6, 1.15);
    cv::line(picture, root, tip, colour, width, cv::LINE_AA);
  }
  return lit(picture, 1.0 + 0.10 * unevenness(size, 30.0 * scale, 30.0 * scale, random));
}

/// Mosaic: small square stones that shine differently, set by hand into pale grout.
cv::Mat mosaic(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {36, 92, 128}, {214, 206, 186}, {60, 140, 138}, {190, 120, 62}, {96, 44, 66}};
  const double step = random.uniform(5.0, 13.0) * scale;
  cv::Mat picture(size, CV_8UC3, cv::Scalar(200, 196, 190));
  for (double y = 0.0; y < size.height + step; y += step)
    for (double x = 0.0; x < size.width + step; x += step) {
      const cv::Point2d at(x + 0.06 * step * random.normal(), y + 0.06 * step * random.normal());
      const cv::Size2d stone(step * random.uniform(0.78, 0.9), step * random.uniform(0.78, 0.9));
      std::vector<cv::Point2f> corners(4);
      cv::RotatedRect(at, stone, static_cast<float>(3.0 * random.normal())).points(corners.data());
      const cv::Scalar colour = drawFrom(kColours, random) * random.uniform(0.75, 1.2);
      cv::fillConvexPoly(picture, std::vector<cv::Point>(corners.begin(), corners.end()), colour,
                         cv::LINE_AA);
    }
  return lit(picture, 1.0 + 0.04 * unevenness(size, 0.8 * scale, 0.8 * scale, random));
}

}  // namespace corvana::photos
