#include "CardMotion.h"

#include <cmath>
#include <cstddef>

#include "Angles.h"
#include "CardArtist.h"
#include "Ease.h"
#include "Picture.h"

namespace corvana::session {
namespace {

constexpr double kComing = 1.2;          // seconds from out of view to in place
constexpr double kFocalLength = 1900.0;  // pixels; the card is held at this distance
constexpr double kGripInside = 0.040;    // of the card's height covered by the thumb's tip
constexpr double kGripAside = 0.05;      // of the card's width from its middle

}  // namespace

CardMotion::CardMotion(const Script& script, Random& random)
    : time_(script.time),
      place_(script.cardPlace),
      height_(place_.width * CardArtist::kHeight / CardArtist::kWidth),
      restRoll_(random.uniform(-1.6, 1.6)),
      restTiltX_(random.uniform(-3.0, 3.0)),
      restTiltY_(random.uniform(-3.0, 3.0)),
      tremorX_(random, 1.9),
      tremorY_(random, 2.1),
      swayX_(random, 0.23),
      swayY_(random, 0.21),
      roll_(random, 0.31),
      tiltX_(random, 0.27),
      tiltY_(random, 0.25) {}

double CardMotion::away(double seconds) const {
  return 1.0 - ease(seconds, time_.frontAt, time_.frontAt + kComing) +
         ease(seconds, time_.leaveAt, time_.leaveAt + kComing);
}

cv::Point2d CardMotion::centre(double seconds) const {
  const double gone = away(seconds);
  const double below = kPictureHeight - place_.y + 0.75 * height_;
  const double turning =
      pulse(seconds, time_.flipAt, time_.flipAt + time_.flipSeconds, 0.5 * time_.flipSeconds);
  return {place_.x + 90.0 * gone + 3.5 * swayX_.at(seconds) + 0.8 * tremorX_.at(seconds),
          place_.y + below * gone - 14.0 * turning + 3.5 * swayY_.at(seconds) +
              0.8 * tremorY_.at(seconds)};
}

CardPose CardMotion::at(double seconds) const {
  CardPose pose;
  const double gone = away(seconds);
  pose.visible = gone < 0.9999;
  if (!pose.visible) return pose;
  const double turn = ease(seconds, time_.flipAt, time_.flipAt + time_.flipSeconds);
  pose.back = turn > 0.5;
  // The side that faces the camera is turned by less than a right angle.
  const double yaw =
      ((pose.back ? turn - 1.0 : turn) * 180.0 + restTiltY_ + 1.2 * tiltY_.at(seconds)) * kDegree;
  const double pitch = (restTiltX_ + 1.2 * tiltX_.at(seconds) - 14.0 * gone) * kDegree;
  pose.roll = restRoll_ + 0.8 * roll_.at(seconds) + 10.0 * gone;
  const double cr = std::cos(pose.roll * kDegree), sr = std::sin(pose.roll * kDegree);
  const cv::Point2d middle = centre(seconds);
  const auto seen = [&](double x, double y) {
    const double depth = x * std::sin(yaw) - y * std::sin(pitch);
    const double near = kFocalLength / (kFocalLength - depth);
    const double px = x * std::cos(yaw) * near, py = y * std::cos(pitch) * near;
    return middle + cv::Point2d(cr * px - sr * py, sr * px + cr * py);
  };
  const double w = 0.5 * place_.width, h = 0.5 * height_;
  pose.corners = {seen(-w, -h), seen(w, -h), seen(w, h), seen(-w, h)};
  const double grip = 0.5 * height_ * (1.0 - 2.0 * kGripInside);
  const double aside = kGripAside * place_.width;
  pose.grip = middle + cv::Point2d(cr * aside - sr * grip, sr * aside + cr * grip);
  pose.light = 0.82 + 0.18 * std::abs(std::cos(yaw));
  pose.speed = cv::norm(centre(seconds + 0.5 / kFramesPerSecond) -
                        centre(seconds - 0.5 / kFramesPerSecond)) *
               kFramesPerSecond;
  return pose;
}

}  // namespace corvana::session
