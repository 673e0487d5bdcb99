#include <algorithm>
#include <cmath>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "GroundLight.h"
#include "GroundPainters.h"
#include "People.h"

namespace corvana::photos {
namespace {

using session::Random;

/// Lines across and, on squared paper, along, with a margin in red.
void rule(cv::Mat& page, double step, bool isSquared, double scale, Random& random) {
  static const std::vector<cv::Scalar> kInks = {
      {150, 178, 214}, {178, 184, 190}, {152, 196, 188}, {196, 170, 204}};
  const cv::Scalar ink = drawFrom(kInks, random);
  const int width = pixels(0.22 * scale);
  for (double y = 0.5 * step; y < page.rows; y += step)
    cv::line(page, cv::Point2d(0.0, y), cv::Point2d(page.cols, y), ink, width, cv::LINE_AA);
  for (double x = 0.5 * step; isSquared && x < page.cols; x += step)
    cv::line(page, cv::Point2d(x, 0.0), cv::Point2d(x, page.rows), ink, width, cv::LINE_AA);
  const double margin = random.uniform(0.08, 0.3) * page.cols;
  cv::line(page, cv::Point2d(margin, 0.0), cv::Point2d(margin, page.rows),
           cv::Scalar(206, 110, 112), pixels(0.3 * scale), cv::LINE_AA);
}

/// A word by hand that nobody can read: loops of several heights that lean to the right.
double scribble(cv::Mat& page, cv::Point2d at, double letter, const cv::Scalar& ink, double scale,
                Random& random) {
  std::vector<cv::Point> points;
  for (int left = static_cast<int>(random.uniform(2.0, 9.0)); left > 0; --left) {
    const double kind = random.uniform(0.0, 1.0);
    const double height = letter * (kind < 0.2 ? 1.9 : kind < 0.3 ? -0.9 : 1.0);
    const double width = letter * random.uniform(0.7, 1.1);
    for (double turn = 0.0; turn < 1.0; turn += 0.1) {
      const double rise = 0.5 - 0.5 * std::cos(2.0 * CV_PI * turn);
      const double loop = 0.2 * letter * std::sin(2.0 * CV_PI * turn);
      points.emplace_back(at +
                          cv::Point2d(width * turn + loop + 0.3 * height * rise, -height * rise));
    }
    at.x += width;
  }
  cv::polylines(page, points, false, ink, pixels(0.3 * scale), cv::LINE_AA);
  return at.x;
}

/// Holes down the page, each with two turns of the wire that holds it.
void bind(cv::Mat& page, double x, double scale, Random& random) {
  const double pitch = random.uniform(6.0, 9.0) * scale;
  for (double y = 0.4 * pitch; y < page.rows; y += pitch) {
    cv::circle(page, cv::Point2d(x, y), pixels(2.0 * scale), cv::Scalar(58, 54, 52), cv::FILLED,
               cv::LINE_AA);
    for (const double beside : {-0.7, 0.7})
      cv::line(page, cv::Point2d(x, y + beside * scale),
               cv::Point2d(x - 8.0 * scale, y + (beside - 0.8) * scale),
               cv::Scalar::all(beside < 0.0 ? 196.0 : 128.0), pixels(0.8 * scale), cv::LINE_AA);
  }
}

/// Fine lines that use has left, light or dark, straight and short.
void scratch(cv::Mat& light, double scale, Random& random) {
  const double scratches = light.size().area() / (180.0 * scale * scale);
  for (int i = 0; i < scratches; ++i) {
    const cv::Point2d from(random.uniform(0.0, light.cols), random.uniform(0.0, light.rows));
    const double angle = 0.6 * random.normal();
    const double length = random.uniform(1.0, 22.0) * scale;
    cv::line(light, from, from + length * cv::Point2d(std::cos(angle), std::sin(angle)),
             cv::Scalar(random.uniform(0.0, 1.0) < 0.6 ? 1.22 : 0.78), 1, cv::LINE_AA);
  }
}

/// The light on a rod, from −1 at one side to 1 at the other.
double roundness(double beside) {
  return 0.3 + 0.7 * std::sqrt(std::max(0.0, 1.0 - beside * beside));
}

}  // namespace

/// A notebook: ruled or squared paper, some of it written on by hand, with a wire or none.
cv::Mat notebook(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kPapers = {
      {244, 244, 240}, {242, 234, 208}, {226, 238, 226}, {228, 222, 210}};
  static const std::vector<cv::Scalar> kInks = {
      {28, 44, 120}, {30, 30, 36}, {120, 30, 60}, {70, 74, 80}};
  cv::Mat page(size, CV_8UC3, drawFrom(kPapers, random));
  const bool isSquared = random.uniform(0.0, 1.0) < 0.6;
  const double step = (isSquared ? random.uniform(4.0, 5.2) : random.uniform(6.5, 9.0)) * scale;
  rule(page, step, isSquared, scale, random);
  const cv::Scalar ink = drawFrom(kInks, random);
  const double written = random.uniform(0.2, 0.9);
  for (double y = 0.5 * step; y < size.height; y += isSquared ? 2.0 * step : step) {
    const double end = size.width * random.uniform(0.3, 1.0);
    for (double x = 0.05 * size.width; random.uniform(0.0, 1.0) < written && x < end;)
      x = 2.5 * scale +
          scribble(page, {x, y}, random.uniform(1.7, 2.3) * scale, ink, scale, random);
  }
  if (random.uniform(0.0, 1.0) < 0.5)
    bind(page, random.uniform(0.05, 0.95) * size.width, scale, random);
  return lit(page, 1.0 + 0.015 * unevenness(size, 0.5 * scale, 0.5 * scale, random) +
                       0.02 * unevenness(size, 60.0 * scale, 40.0 * scale, random));
}

/// A counter of brushed metal: lines along it, a window's light across them, scratches and a seam.
cv::Mat steel(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kMetals = {
      {176, 180, 184}, {122, 126, 132}, {196, 188, 174}, {62, 66, 72}, {184, 150, 104}};
  cv::Mat light = 1.0 + 0.05 * unevenness(size, 0.2 * scale, 90.0 * scale, random) +
                  0.04 * unevenness(size, 1.5 * scale, 160.0 * scale, random);
  const double window = random.uniform(0.0, 1.0) * size.width;
  const double reach = random.uniform(40.0, 120.0) * scale;
  for (int column = 0; column < size.width; ++column) {
    const double far = (column - window) / reach;
    light.col(column) *= 0.86 + 0.32 * std::exp(-far * far);
  }
  scratch(light, scale, random);
  const int seam = static_cast<int>(random.uniform(0.05, 0.95) * size.height);
  const cv::Rect frame({}, size);
  light(cv::Rect(0, seam, size.width, pixels(0.7 * scale)) & frame) *= 0.4;
  light(cv::Rect(0, seam + pixels(0.7 * scale), size.width, pixels(0.5 * scale)) & frame) *= 1.25;
  return coloured(light, drawFrom(kMetals, random));
}

/// Wicker: strands that go over one stake and under the next, row for row the other way.
cv::Mat wicker(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kCanes = {
      {206, 164, 104}, {150, 104, 62}, {232, 222, 200}, {108, 76, 56}, {160, 158, 150}};
  const cv::Scalar usual = drawFrom(kCanes, random), other = drawFrom(kCanes, random);
  const double strand = random.uniform(2.6, 5.0) * scale;
  const double stake = random.uniform(2.2, 3.4) * strand;
  const double others = random.uniform(0.0, 0.4);
  cv::Mat picture(size, CV_8UC3, usual);
  for (double y = 0.0; y < size.height; y += strand)
    if (random.uniform(0.0, 1.0) < others)
      picture.rowRange(static_cast<int>(y), std::min(size.height, static_cast<int>(y + strand)))
          .setTo(other);
  cv::Mat light = 1.0 + 0.06 * unevenness(size, 0.4 * scale, 9.0 * scale, random);
  for (int row = 0; row < size.height; ++row)
    for (int column = 0; column < size.width; ++column) {
      const double along = column / stake + static_cast<int>(row / strand) % 2;
      // Highest over every second stake, out of sight under those between them.
      const double height = std::cos(CV_PI * along);
      const bool isStake = height < -0.7;
      const double shade =
          isStake ? 0.8 * roundness(std::acos(-height) / std::acos(0.7))
                  : (0.8 + 0.25 * height) * roundness(2.0 * std::fmod(row, strand) / strand - 1.0);
      light.at<float>(row, column) *= static_cast<float>(shade);
    }
  return lit(picture, light);
}

}  // namespace corvana::photos
