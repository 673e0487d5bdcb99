#include "Guilloche.h"

#include <cmath>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "Angles.h"
#include "Ease.h"
#include "Painting.h"
#include "Random.h"

namespace corvana::session {
namespace {

const cv::Vec3d kLeft(226, 238, 247);
const cv::Vec3d kMiddle(240, 243, 232);
const cv::Vec3d kRight(246, 232, 230);

cv::Mat gradient(cv::Size size) {
  cv::Mat picture(size, CV_8UC3);
  for (int x = 0; x < size.width; ++x) {
    const double share = static_cast<double>(x) / size.width;
    const cv::Vec3d colour = share < 0.5 ? kLeft + (kMiddle - kLeft) * (2.0 * share)
                                         : kMiddle + (kRight - kMiddle) * (2.0 * share - 1.0);
    picture.col(x).setTo(cv::Scalar(colour));
  }
  return picture;
}

void drawWaves(cv::Mat& picture, Random& random, const cv::Scalar& colour) {
  const double height = picture.rows;
  const double phase = random.uniform(0.0, kFullTurn);
  const double turns = random.uniform(2.0, 3.5);
  for (double line = -0.15; line < 1.15; line += 0.017) {
    std::vector<cv::Point2d> points;
    for (int x = -8; x <= picture.cols + 8; x += 8) {
      const double share = static_cast<double>(x) / picture.cols;
      const double swell = std::sin(kFullTurn * turns * share + phase + 2.2 * line);
      const double fine = std::sin(kFullTurn * turns * 4.0 * share - phase + 9.0 * line);
      points.emplace_back(x, height * (line + 0.045 * swell + 0.012 * fine));
    }
    drawCurve(picture, points, colour);
  }
}

void drawRosette(cv::Mat& picture, cv::Point2d centre, double radius, const cv::Scalar& colour) {
  for (double ring = 0.35; ring <= 1.0; ring += 0.05) {
    std::vector<cv::Point2d> points;
    for (int i = 0; i <= 720; ++i) {
      const double angle = kFullTurn * i / 720.0;
      const double r = radius * ring * (1.0 + 0.16 * std::sin(12.0 * angle + 9.0 * ring));
      points.emplace_back(centre.x + r * std::cos(angle), centre.y + r * std::sin(angle));
    }
    drawCurve(picture, points, colour);
  }
}

}  // namespace

cv::Mat guilloche(cv::Size size, std::uint64_t seed) {
  Random random(seed);
  cv::Mat picture = gradient(size);
  drawWaves(picture, random, cv::Scalar(208, 224, 236));
  drawWaves(picture, random, cv::Scalar(230, 222, 214));
  drawRosette(picture, {size.width * 0.78, size.height * 0.52}, size.height * 0.40,
              cv::Scalar(224, 214, 226));
  return picture;
}

}  // namespace corvana::session
