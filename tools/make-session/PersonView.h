#pragma once

#include <optional>

#include <opencv2/core.hpp>

#include "Expression.h"
#include "HeadWarp.h"
#include "PersonMotion.h"
#include "Portrait.h"
#include "Script.h"

namespace corvana::session {

/// The person in a room, as the camera sees them. One thread.
class PersonView {
 public:
  PersonView(const Portrait& portrait, const PersonScript& script);

  /// Draws the film's picture (RGB) without card and noise.
  void draw(const PersonPose& pose, cv::Mat& picture);
  /// Of the cheeks, for the hand.
  cv::Scalar skinColour() const { return skin_; }

 private:
  cv::Mat roomWith(const Portrait& portrait, const PersonScript& script) const;
  engine::FaceMesh inCanvas(const Portrait& portrait, cv::Point2d corner) const;
  cv::Scalar cheekColour(const engine::FaceMesh& face) const;

  cv::Point2d place_;
  double scale_;
  cv::Mat rest_;
  cv::Mat canvas_;
  HeadWarp warp_;
  Expression expression_;
  cv::Scalar skin_;
  cv::Mat mapX_, mapY_;
  std::optional<PersonPose> drawn_;  ///< whom `seen_` shows; a print's pose never changes
  cv::Mat seen_;
};

}  // namespace corvana::session
