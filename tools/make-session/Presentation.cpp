#include "Presentation.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <opencv2/imgproc.hpp>

#include "FineMap.h"
#include "Picture.h"
#include "PresentedLook.h"

namespace corvana::session {
namespace {

constexpr int kGridStep = 16;  // pixels between the places that are computed
constexpr int kRefinements = 8;
constexpr double kExactly = 1e-3;       // pixels, a thirtieth of what the picture is looked up by
constexpr double kArmsLength = 1250.0;  // pixels, as an arm's length is to a face
constexpr double kSway = 14.0;          // pixels
constexpr double kHandShake = 3.0;      // of the camera
constexpr int kRoomMargin = 40;
constexpr double kJitter = 1.5;       // pixels
constexpr double kZoomJitter = 4e-3;  // share

cv::Point2d middle() {
  return {0.5 * kPictureWidth, 0.5 * kPictureHeight};
}

}  // namespace

Presentation::Presentation(const PresentationScript& script, Random& random)
    : script_(script),
      random_(static_cast<std::uint64_t>(random.uniform(0.0, 1e15))),
      yaw_(random, 0.21),
      pitch_(random, 0.17),
      roll_(random, 0.12),
      x_(random, 0.19),
      y_(random, 0.23),
      bend_(random, 0.25),
      cameraX_(random, 0.35),
      cameraY_(random, 0.40),
      bendAxis_(random.uniform(-0.35, 0.35)),
      pixelPitch_(random.uniform(0.92, 1.09)),
      flickerSpeed_(random.uniform(2.0, 12.0)) {
  if (script_.bendAxis) bendAxis_ = Turn(*script_.bendAxis * CV_PI / 180.0);
  if (script_.kind != "print" && script_.kind != "screen") return;
  room_ = emptyRoom({kPictureWidth + 2 * kRoomMargin, kPictureHeight + 2 * kRoomMargin}, random);
}

double Presentation::momentShown(double seconds) const {
  if (script_.kind != "loop") return seconds;
  return script_.loopFrom + std::fmod(seconds, script_.loopSeconds);
}

PersonPose Presentation::shown(const PersonPose& living) const {
  if (script_.kind != "print" && script_.kind != "still") return living;
  PersonPose pose;
  if (script_.livingEyes) pose.lids = living.lids;
  return pose;
}

void Presentation::show(double seconds, cv::Mat& picture) {
  if (script_.kind == "still") shake(picture);
  if (script_.kind == "print" || script_.kind == "screen") showHeld(seconds, picture);
}

void Presentation::shake(cv::Mat& picture) {
  const double zoom = 1.0 + random_.uniform(0, kZoomJitter);
  const cv::Point2d shift =
      middle() * (1.0 - zoom) +
      cv::Point2d(random_.uniform(-kJitter, kJitter), random_.uniform(-kJitter, kJitter));
  const cv::Matx23d transform(zoom, 0.0, shift.x, 0.0, zoom, shift.y);
  const cv::Mat still = picture.clone();
  cv::warpAffine(still, picture, transform, picture.size(), cv::INTER_LINEAR, cv::BORDER_REPLICATE);
}

Presentation::Hold Presentation::holdAt(double seconds) const {
  const double tilt = script_.tilt * CV_PI / 180.0;
  return {.yaw = Turn(tilt * yaw_.at(seconds)),
          .pitch = Turn(0.6 * tilt * pitch_.at(seconds)),
          .roll = Turn(0.3 * tilt * roll_.at(seconds)),
          .x = kSway * x_.at(seconds),
          .y = kSway * y_.at(seconds),
          .bend = script_.bend * (0.6 + 0.4 * bend_.at(seconds))};
}

cv::Point2d Presentation::seenAt(cv::Point2d onSheet, const Hold& hold) const {
  const cv::Point2d flat = script_.scale * (onSheet - middle());
  // The sheet is rolled about an axis: along it nothing changes.
  const auto& [ca, sa] = bendAxis_;
  double across = ca * flat.x + sa * flat.y;
  const double along = -sa * flat.x + ca * flat.y;
  double z = 0.0;
  if (std::abs(hold.bend) > 1e-3) {
    const double radius = script_.scale * kPictureWidth / hold.bend;
    const double angle = std::clamp(across / radius, -1.4, 1.4);
    across = radius * std::sin(angle);
    z = radius * (std::cos(angle) - 1.0);
  }
  const double x = ca * across - sa * along, y = sa * across + ca * along;
  const auto& [cy, sy] = hold.yaw;
  const auto& [cp, sp] = hold.pitch;
  const auto& [cr, sr] = hold.roll;
  const double x1 = cy * x + sy * z, z1 = -sy * x + cy * z;
  const double y2 = cp * y + sp * z1, z2 = -sp * y + cp * z1;
  const double far = kArmsLength / (kArmsLength - z2);
  return middle() +
         cv::Point2d(far * (cr * x1 - sr * y2) + hold.x, far * (sr * x1 + cr * y2) + hold.y);
}

void Presentation::mapSheet(const Hold& hold) {
  constexpr int kWide = kPictureWidth / kGridStep + 2;
  constexpr int kHigh = kPictureHeight / kGridStep + 2;
  cv::Mat coarseX(kHigh, kWide, CV_32FC1);
  cv::Mat coarseY(kHigh, kWide, CV_32FC1);
  for (int row = 0; row < kHigh; ++row)
    for (int column = 0; column < kWide; ++column) {
      const cv::Point2d seen((column - 0.5) * kGridStep - 0.5, (row - 0.5) * kGridStep - 0.5);
      cv::Point2d source = middle() + (seen - middle()) / script_.scale;
      cv::Point2d miss(1.0, 1.0);
      for (int i = 0; i < kRefinements && cv::norm(miss) > kExactly; ++i) {
        miss = (seen - seenAt(source, hold)) / script_.scale;
        source += miss;
      }
      coarseX.at<float>(row, column) = static_cast<float>(source.x);
      coarseY.at<float>(row, column) = static_cast<float>(source.y);
    }
  mapX_ = fineMap(coarseX, kGridStep);
  mapY_ = fineMap(coarseY, kGridStep);
}

void Presentation::showHeld(double seconds, cv::Mat& picture) {
  mapSheet(holdAt(seconds));
  const cv::Rect2d sheet(script_.crop * kPictureWidth, script_.crop * kPictureHeight,
                         (1.0 - 2.0 * script_.crop) * kPictureWidth,
                         (1.0 - 2.0 * script_.crop) * kPictureHeight);
  const bool isPrint = script_.kind == "print";
  if (isPrint) printed(picture);
  cv::remap(picture, held_, mapX_, mapY_, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
  const cv::Mat inside = depthInside(mapX_, mapY_, sheet);
  if (!isPrint) {
    litByDisplay(held_,
                 {mapX_, mapY_, pixelPitch_, 2 * std::numbers::pi * flickerSpeed_ * seconds});
    frameDisplay(inside, held_);
  }
  const cv::Rect view(
      kRoomMargin + static_cast<int>(std::lround(kHandShake * cameraX_.at(seconds))),
      kRoomMargin + static_cast<int>(std::lround(kHandShake * cameraY_.at(seconds))), kPictureWidth,
      kPictureHeight);
  lay(room_(view), inside, isPrint ? 0.0F : kBezel, held_);
  cv::swap(held_, picture);
}

}  // namespace corvana::session
