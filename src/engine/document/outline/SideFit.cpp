#include "engine/document/outline/SideFit.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "engine/document/outline/EdgeLines.h"

namespace corvana::engine {
namespace {

constexpr int kProfiles = 60;
constexpr double kCornerShare = 0.07;
constexpr double kLeastStep = 5;  ///< grey levels per pixel, in the channel that changes most
constexpr std::size_t kLeastAgreeing = 15;

cv::Vec3d colorAt(const cv::Mat& rgb, cv::Point2d at) {
  const double x = std::clamp(at.x, 0.0, rgb.cols - 1.001);
  const double y = std::clamp(at.y, 0.0, rgb.rows - 1.001);
  const int x0 = static_cast<int>(x);
  const int y0 = static_cast<int>(y);
  const double fx = x - x0;
  const double fy = y - y0;
  const auto pixel = [&](int dx, int dy) { return cv::Vec3d(rgb.at<cv::Vec3b>(y0 + dy, x0 + dx)); };
  return (1 - fy) * ((1 - fx) * pixel(0, 0) + fx * pixel(1, 0)) +
         fy * ((1 - fx) * pixel(0, 1) + fx * pixel(1, 1));
}

double stepBetween(const cv::Vec3d& a, const cv::Vec3d& b) {
  return std::max({std::abs(a[0] - b[0]), std::abs(a[1] - b[1]), std::abs(a[2] - b[2])}) / 2;
}

/// The strongest step across the side at a place, to a part of a pixel.
std::optional<cv::Point2d> stepAt(const cv::Mat& rgb, cv::Point2d place, cv::Point2d normal,
                                  double reach) {
  const int middle = static_cast<int>(std::ceil(reach)) + 1;
  std::vector<cv::Vec3d> colors;
  colors.reserve(static_cast<std::size_t>(2 * middle + 1));
  for (int i = -middle; i <= middle; ++i)
    colors.push_back(colorAt(rgb, place + i * normal));
  std::vector<double> steps(colors.size(), 0.0);
  for (std::size_t i = 1; i + 1 < colors.size(); ++i) {
    steps[i] = stepBetween(colors[i + 1], colors[i - 1]);
  }
  const auto strongest = std::max_element(steps.begin() + 1, steps.end() - 1);
  if (*strongest < kLeastStep) return std::nullopt;
  const double before = *(strongest - 1);
  const double after = *(strongest + 1);
  const double curve = before - 2 * *strongest + after;
  const double part = curve < 0 ? std::clamp(0.5 * (before - after) / curve, -0.5, 0.5) : 0;
  const auto index = static_cast<double>(strongest - steps.begin());
  return place + (index + part - middle) * normal;
}

double distanceTo(const cv::Vec4f& line, cv::Point2f point) {
  return std::abs((point.x - line[2]) * line[1] - (point.y - line[3]) * line[0]);
}

/// A line through most of the points: fitted, freed of what lies off, and fitted again.
std::optional<cv::Vec4f> lineThrough(std::vector<cv::Point2f> points) {
  cv::Vec4f line;
  for (const double tolerance : {4.0, 2.5, 1.5}) {
    if (points.size() < kLeastAgreeing) return std::nullopt;
    cv::fitLine(points, line, cv::DIST_HUBER, 0, 0.01, 0.01);
    points.erase(std::remove_if(points.begin(), points.end(),
                                [&](auto point) { return distanceTo(line, point) > tolerance; }),
                 points.end());
  }
  if (points.size() < kLeastAgreeing) return std::nullopt;
  cv::fitLine(points, line, cv::DIST_HUBER, 0, 0.01, 0.01);
  return line;
}

EdgeLine sideLine(const cv::Mat& rgb, cv::Point2d a, cv::Point2d b, double reach) {
  const cv::Point2d along = (b - a) / cv::norm(b - a);
  const cv::Point2d normal(-along.y, along.x);
  std::vector<cv::Point2f> points;
  for (int i = 0; i < kProfiles; ++i) {
    const double t = kCornerShare + (1 - 2 * kCornerShare) * (i + 0.5) / kProfiles;
    if (const auto step = stepAt(rgb, a + t * (b - a), normal, reach)) points.emplace_back(*step);
  }
  const auto line = lineThrough(std::move(points));
  if (!line) return {{along.x, along.y}, a, 0};
  return {{(*line)[0], (*line)[1]}, {(*line)[2], (*line)[3]}, 0};
}

}  // namespace

Quad fitSides(const cv::Mat& rgb, const Quad& rough, double reach) {
  cv::Mat smooth;
  cv::GaussianBlur(rgb, smooth, cv::Size(3, 3), 0);
  std::vector<EdgeLine> sides;
  for (std::size_t i = 0; i < 4; ++i) {
    const auto& a = rough.corners[i];
    const auto& b = rough.corners[(i + 1) % 4];
    sides.push_back(sideLine(smooth, {a.x, a.y}, {b.x, b.y}, reach));
  }
  Quad fitted;
  for (std::size_t i = 0; i < 4; ++i) {
    const cv::Point2d corner = meeting(sides[(i + 3) % 4], sides[i]);
    const bool isNear =
        std::hypot(corner.x - rough.corners[i].x, corner.y - rough.corners[i].y) < 3 * reach;
    if (!isNear) return rough;
    fitted.corners[i] = {corner.x, corner.y};
  }
  return fitted;
}

}  // namespace corvana::engine
