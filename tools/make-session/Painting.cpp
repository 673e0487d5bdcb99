#include "Painting.h"

#include <cmath>

#include <opencv2/imgproc.hpp>

#include "Random.h"

namespace corvana::session {
namespace {

constexpr int kShift = 4;  // sixteenths of a pixel in OpenCV's fixed-point drawing

}  // namespace

std::uint64_t seedOf(const std::string& text) {
  std::uint64_t hash = 1469598103934665603ULL;  // FNV-1a
  for (const unsigned char c : text)
    hash = (hash ^ c) * 1099511628211ULL;
  return hash;
}

void drawCurve(cv::Mat& picture, const std::vector<cv::Point2d>& points, const cv::Scalar& colour) {
  std::vector<cv::Point> fixed;
  fixed.reserve(points.size());
  for (const cv::Point2d& point : points)
    fixed.emplace_back(static_cast<int>(std::lround(point.x * (1 << kShift))),
                       static_cast<int>(std::lround(point.y * (1 << kShift))));
  cv::polylines(picture, fixed, false, colour, 1, cv::LINE_AA, kShift);
}

void drawEmblem(cv::Mat& picture, cv::Point2d centre, double radius, double pixelsPerMillimetre,
                const cv::Scalar& colour) {
  const auto whole = [&](double millimetres) {
    return static_cast<int>(std::lround(millimetres * pixelsPerMillimetre));
  };
  std::vector<cv::Point> star;
  for (int i = 0; i < 16; ++i) {
    const double angle = CV_PI * i / 8.0 - CV_PI / 2.0;
    const double r = i % 2 == 0 ? radius * 0.86 : radius * 0.36;
    star.emplace_back(whole(centre.x + r * std::cos(angle)), whole(centre.y + r * std::sin(angle)));
  }
  cv::circle(picture, {whole(centre.x), whole(centre.y)}, whole(radius), colour, whole(0.22),
             cv::LINE_AA);
  cv::fillPoly(picture, std::vector<std::vector<cv::Point>>{star}, colour, cv::LINE_AA);
}

void drawSignature(cv::Mat& picture, const std::string& name, cv::Point2d start, double width,
                   double size, double pixelsPerMillimetre, const cv::Scalar& colour) {
  const auto whole = [&](double millimetres) {
    return static_cast<int>(std::lround(millimetres * pixelsPerMillimetre));
  };
  Random random(seedOf(name));
  const double loops = random.uniform(5.0, 8.0);
  const double phase = random.uniform(0.0, 6.28);
  std::vector<cv::Point> points;
  for (int i = 0; i <= 400; ++i) {
    const double t = i / 400.0;
    const double angle = 6.2832 * loops * t + phase;
    const double height = size * (1.9 - 1.3 * t) * (0.7 + 0.3 * std::sin(5.0 * t + phase));
    points.emplace_back(whole(start.x + width * t + 0.9 * std::cos(angle)),
                        whole(start.y - height * std::sin(angle)));
  }
  cv::polylines(picture, points, false, colour, whole(0.22), cv::LINE_AA);
}

cv::Mat withRoundedCorners(const cv::Mat& picture, int r) {
  cv::Mat mask(picture.size(), CV_8UC1, cv::Scalar(0));
  const int right = picture.cols - 1;
  const int bottom = picture.rows - 1;
  cv::rectangle(mask, {r, 0}, {right - r, bottom}, 255, cv::FILLED);
  cv::rectangle(mask, {0, r}, {right, bottom - r}, 255, cv::FILLED);
  for (const cv::Point centre :
       {cv::Point(r, r), {right - r, r}, {r, bottom - r}, {right - r, bottom - r}})
    cv::circle(mask, centre, r, 255, cv::FILLED, cv::LINE_AA);
  const int order[] = {0, 0, 1, 1, 2, 2, 3, 3};
  cv::Mat rgba(picture.size(), CV_8UC4);
  const cv::Mat sources[] = {picture, mask};
  cv::mixChannels(sources, 2, &rgba, 1, order, 4);
  return rgba;
}

}  // namespace corvana::session
