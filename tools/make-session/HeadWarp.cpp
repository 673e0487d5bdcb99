#include "HeadWarp.h"

#include <algorithm>
#include <cmath>

#include "Ease.h"
#include "FineMap.h"
#include "Picture.h"

namespace corvana::session {
namespace {

constexpr int kStep = 8;      // pixels between nodes
constexpr int kMargin = 160;  // the field reaches beyond the picture, where the head may come from
constexpr int kColumns = (kPictureWidth + 2 * kMargin) / kStep + 1;
constexpr int kRows = (kPictureHeight + 2 * kMargin) / kStep + 1;
constexpr int kInversionSteps = 5;

// In face widths.
constexpr double kCameraDistance = 4.0;
constexpr double kNeckBehindFace = 0.45;
constexpr double kBreathLift = 0.012;
/// How fast the head curves away outside the face's outline.
constexpr double kFallOff = 0.45;

/// Depth at a place, from the surface's points weighted by nearness: exact on the face, and a
/// smooth continuation of its rim outside.
double surfaceDepth(const engine::FaceMesh& face, cv::Point2d place, double faceWidth) {
  const double softness = 0.0016 * faceWidth * faceWidth;
  double sum = 0.0;
  double weights = 0.0;
  double nearest = 1e12;
  for (const engine::SurfacePoint& point : face) {
    const double dx = point.x - place.x;
    const double dy = point.y - place.y;
    const double distance = dx * dx + dy * dy;
    nearest = std::min(nearest, distance);
    const double weight = 1.0 / ((distance + softness) * (distance + softness));
    sum += weight * -point.z;
    weights += weight;
  }
  const double outside = std::max(0.0, std::sqrt(nearest) - 0.06 * faceWidth);
  return sum / weights - kFallOff * std::min(outside, 0.7 * faceWidth);
}

}  // namespace

HeadWarp::HeadWarp(const engine::FaceMesh& face, cv::Point2d centre, double faceWidth)
    : centre_(centre), pivot_(centre.x, centre.y + 0.6 * faceWidth), faceWidth_(faceWidth) {
  double rim = 0.0;
  for (const engine::SurfacePoint& point : face)
    rim += -point.z / static_cast<double>(face.size());
  nodes_.reserve(static_cast<std::size_t>(kColumns) * kRows);
  for (int row = 0; row < kRows; ++row)
    for (int column = 0; column < kColumns; ++column) {
      const cv::Point2d place = rest(column, row);
      const double x = (place.x - centre.x) / faceWidth;
      const double y = (place.y - (centre.y - 0.12 * faceWidth)) / faceWidth;
      const double distance = std::hypot(x / 0.85, y / (y < 0 ? 1.0 : 0.80));
      Node node{};
      node.head = static_cast<float>(1.0 - ease(distance, 0.8, 2.3));
      if (node.head > 0)
        node.depth = static_cast<float>(surfaceDepth(face, place, faceWidth) - rim +
                                        kNeckBehindFace * faceWidth);
      node.chest = static_cast<float>(ease(y, 0.6, 2.0) * (1.0 - ease(std::abs(x), 1.2, 3.0)));
      nodes_.push_back(node);
    }
}

cv::Point2d HeadWarp::rest(int column, int row) const {
  return {static_cast<double>(column * kStep - kMargin),
          static_cast<double>(row * kStep - kMargin)};
}

std::vector<cv::Point2f> HeadWarp::displacements(const PersonPose& pose) const {
  const double radian = CV_PI / 180.0;
  const double cy = std::cos(pose.yaw * radian), sy = std::sin(pose.yaw * radian);
  const double cp = std::cos(pose.pitch * radian), sp = std::sin(pose.pitch * radian);
  const double cr = std::cos(pose.roll * radian), sr = std::sin(pose.roll * radian);
  const double camera = kCameraDistance * faceWidth_;
  const cv::Point2d sway(pose.swayX * faceWidth_, pose.swayY * faceWidth_);
  std::vector<cv::Point2f> field(nodes_.size());
  for (std::size_t i = 0; i < nodes_.size(); ++i) {
    const Node& node = nodes_[i];
    const double lift = -kBreathLift * faceWidth_ * pose.breath * node.chest;
    field[i] = {0.0F, static_cast<float>(lift)};
    if (node.head <= 0) continue;
    const cv::Point2d place =
        rest(static_cast<int>(i % kColumns), static_cast<int>(i / kColumns)) - pivot_;
    const double near = (camera - node.depth) / camera;
    const double x = place.x * near, y = place.y * near, z = node.depth;
    const double x1 = cy * x + sy * z, z1 = -sy * x + cy * z;
    const double y2 = cp * y + sp * z1, z2 = -sp * y + cp * z1;
    const double x3 = cr * x1 - sr * y2, y3 = sr * x1 + cr * y2;
    const double far = camera / (camera - z2);
    field[i] += cv::Point2f(static_cast<float>(node.head * (x3 * far - place.x + sway.x)),
                            static_cast<float>(node.head * (y3 * far - place.y + sway.y)));
  }
  return field;
}

cv::Point2f HeadWarp::lookUp(const std::vector<cv::Point2f>& field, cv::Point2f place) const {
  const float x =
      std::clamp((place.x + kMargin) / kStep, 0.0F, static_cast<float>(kColumns) - 1.001F);
  const float y = std::clamp((place.y + kMargin) / kStep, 0.0F, static_cast<float>(kRows) - 1.001F);
  const int column = static_cast<int>(x);
  const int row = static_cast<int>(y);
  const float fx = x - static_cast<float>(column);
  const float fy = y - static_cast<float>(row);
  const cv::Point2f* upper = &field[static_cast<std::size_t>(row * kColumns + column)];
  const cv::Point2f* lower = upper + kColumns;
  return (upper[0] * (1 - fx) + upper[1] * fx) * (1 - fy) +
         (lower[0] * (1 - fx) + lower[1] * fx) * fy;
}

void HeadWarp::maps(const PersonPose& pose, cv::Point2f corner, cv::Mat& mapX,
                    cv::Mat& mapY) const {
  const std::vector<cv::Point2f> field = displacements(pose);
  // One node more on each side than the picture needs; nodes lie in the middle of their cells, as
  // the enlargement takes them.
  constexpr int kWide = kPictureWidth / kStep + 2;
  constexpr int kHigh = kPictureHeight / kStep + 2;
  const cv::Point2f middle(centre_);
  cv::Mat coarseX(kHigh, kWide, CV_32FC1);
  cv::Mat coarseY(kHigh, kWide, CV_32FC1);
  for (int row = 0; row < kHigh; ++row)
    for (int column = 0; column < kWide; ++column) {
      const cv::Point2f moved(static_cast<float>((column - 0.5) * kStep - 0.5 - pose.cameraX),
                              static_cast<float>((row - 0.5) * kStep - 0.5 - pose.cameraY));
      cv::Point2f seen = moved;
      if (pose.nearness != 1) seen = middle + (moved - middle) / static_cast<float>(pose.nearness);
      cv::Point2f source = seen;
      for (int i = 0; i < kInversionSteps; ++i)
        source = seen - lookUp(field, source);
      coarseX.at<float>(row, column) = source.x + corner.x;
      coarseY.at<float>(row, column) = source.y + corner.y;
    }
  mapX = fineMap(coarseX, kStep);
  mapY = fineMap(coarseY, kStep);
}

}  // namespace corvana::session
