#include "View.h"

#include <algorithm>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "Angles.h"

namespace corvana::photos {
namespace {

using session::kDegree;

constexpr double kLeastMargin = 3.0;  // pixels between what is whole and the frame

/// A JPEG encoder fills its last blocks up with whatever there is, which differs each time.
int wholeBlocks(double length) {
  constexpr int kBlock = 16;
  return (static_cast<int>(length) / kBlock + 1) * kBlock;
}

cv::Point2d turned(cv::Point2d point, double degrees) {
  const double c = std::cos(degrees * kDegree), s = std::sin(degrees * kDegree);
  return {c * point.x - s * point.y, s * point.x + c * point.y};
}

/// The plane leaned away by `degrees` about an axis in it.
cv::Matx33d leaning(double degrees, double direction) {
  const double x = std::cos(direction * kDegree), y = std::sin(direction * kDegree);
  const double c = std::cos(degrees * kDegree), s = std::sin(degrees * kDegree);
  return {c + x * x * (1 - c),
          x * y * (1 - c),
          y * s,  //
          x * y * (1 - c),
          c + y * y * (1 - c),
          -x * s,  //
          -y * s,
          x * s,
          c};
}

std::array<cv::Point2d, 4> cornersOf(const cv::Rect2d& box) {
  return {box.tl(), {box.x + box.width, box.y}, box.br(), {box.x, box.y + box.height}};
}

}  // namespace

View::View(const Conditions& conditions, cv::Size2d card, const cv::Rect2d& outline,
           const std::vector<cv::Rect2d>& contents)
    : middle_(0.5 * card.width, 0.5 * card.height),
      turn_(conditions.turn),
      tilt_(leaning(conditions.tilt, conditions.tiltDirection)),
      scale_(conditions.cardWidth / card.width) {
  focal_ = 1e9;  // from far away: how much room it takes at all
  const cv::Rect2d room = bounds({outline});
  const double width =
      std::max(room.width / conditions.fill, room.height / conditions.fill * conditions.aspect);
  frame_ = {static_cast<int>(width), static_cast<int>(width / conditions.aspect)};
  focal_ = conditions.focalLength * std::max(frame_.width, frame_.height);
  placeInFrame(conditions, outline, contents);
}

void View::placeInFrame(const Conditions& conditions, const cv::Rect2d& outline,
                        const std::vector<cv::Rect2d>& contents) {
  const cv::Rect2d near = bounds({outline});
  frame_.width = wholeBlocks(std::max<double>(frame_.width, near.width + 2.0 * kLeastMargin));
  frame_.height = wholeBlocks(std::max<double>(frame_.height, near.height + 2.0 * kLeastMargin));
  const double slackX = 0.5 * (frame_.width - near.width) - kLeastMargin;
  const double slackY = 0.5 * (frame_.height - near.height) - kLeastMargin;
  // Where in the frame: as the ground's turn has it, which is as good a number as any other.
  const cv::Point2d lean = turned({1.0, 0.0}, 7.0 * conditions.groundTurn);
  shift_ = cv::Point2d(0.5 * frame_.width, 0.5 * frame_.height) - 0.5 * (near.tl() + near.br()) +
           0.8 * cv::Point2d(slackX * lean.x, slackY * lean.y);
  if (!conditions.cut) return;
  const cv::Rect2d needed = bounds(contents);
  const bool left = lean.x < 0;
  const double spare =
      left ? needed.x - bounds({outline}).x : bounds({outline}).br().x - needed.br().x;
  const double room = left ? needed.x : frame_.width - needed.br().x;
  if (spare < 2.0 * kLeastMargin) return;
  shift_.x += (left ? -1.0 : 1.0) * (room - std::max(kLeastMargin, 0.3 * spare));
  cuts_ = true;
}

cv::Point2d View::project(cv::Point2d fromMiddle, double turn) const {
  const cv::Point2d flat = turned(fromMiddle, turn);
  const cv::Vec3d point = tilt_ * cv::Vec3d(flat.x, flat.y, 0.0);
  const double distance = focal_ / scale_;
  const double factor = focal_ / (distance + point[2]);
  return cv::Point2d(point[0] * factor, point[1] * factor) + shift_;
}

cv::Point2d View::at(cv::Point2d millimetres) const {
  return project(millimetres - middle_, turn_);
}

cv::Rect2d View::bounds(const std::vector<cv::Rect2d>& boxes) const {
  cv::Point2d least(1e9, 1e9), most(-1e9, -1e9);
  for (const cv::Rect2d& box : boxes)
    for (const cv::Point2d& corner : cornersOf(box)) {
      const cv::Point2d seen = at(corner);
      least = {std::min(least.x, seen.x), std::min(least.y, seen.y)};
      most = {std::max(most.x, seen.x), std::max(most.y, seen.y)};
    }
  return {least, most};
}

std::array<cv::Point2f, 4> View::corners(const cv::Rect2d& millimetres) const {
  std::array<cv::Point2f, 4> seen;
  const auto corners = cornersOf(millimetres);
  std::transform(corners.begin(), corners.end(), seen.begin(),
                 [&](const cv::Point2d& corner) { return cv::Point2f(at(corner)); });
  return seen;
}

cv::Point2d View::onPlane(cv::Point2d pixel) const {
  // Two directions span the leaning plane; the ray through the pixel meets it once.
  const cv::Vec3d u(tilt_.col(0).val), v(tilt_.col(1).val);
  const cv::Point2d ray = (pixel - shift_) / focal_;
  const double distance = focal_ / scale_;
  const cv::Matx22d sides(u[0] - ray.x * u[2], v[0] - ray.x * v[2],  //
                          u[1] - ray.y * u[2], v[1] - ray.y * v[2]);
  const cv::Vec2d found = sides.inv() * cv::Vec2d(ray.x * distance, ray.y * distance);
  return {found[0], found[1]};
}

View::Spread View::spread(double turn) const {
  const cv::Rect2d frame(0.0, 0.0, frame_.width, frame_.height);
  double farX = 0.0, farY = 0.0;
  for (const cv::Point2d& corner : cornersOf(frame)) {
    const cv::Point2d there = turned(onPlane(corner), -turn);
    farX = std::max(farX, std::abs(there.x));
    farY = std::max(farY, std::abs(there.y));
  }
  farX += 1.0;
  farY += 1.0;
  Spread spread{{2.0 * farX, 2.0 * farY}, {}};
  const auto corners = cornersOf({-farX, -farY, 2.0 * farX, 2.0 * farY});
  std::transform(corners.begin(), corners.end(), spread.corners.begin(),
                 [&](const cv::Point2d& corner) { return cv::Point2f(project(corner, turn)); });
  return spread;
}

}  // namespace corvana::photos
