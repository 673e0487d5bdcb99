#pragma once

#include <array>

#include <opencv2/core.hpp>

#include "Random.h"
#include "Script.h"

namespace corvana::session {

/// The card in the picture at one moment.
struct CardPose {
  bool visible = false;
  bool back = false;  ///< which side faces the camera
  /// The shown side's corners in the picture: upper left, upper right, lower right, lower left.
  std::array<cv::Point2f, 4> corners{};
  cv::Point2d grip;    ///< where the thumb's tip touches the card
  double roll = 0.0;   ///< degrees, clockwise
  double light = 1.0;  ///< brightness, less the more the card is turned away
  double speed = 0.0;  ///< of the centre, pixels a second
};

/// The way of the card: in from below, held, turned about its upright axis, held, and away again,
/// by a hand that is never quite still.
class CardMotion {
 public:
  CardMotion(const Script& script, Random& random);

  CardPose at(double seconds) const;

 private:
  cv::Point2d centre(double seconds) const;
  double away(double seconds) const;

  TimeScript time_;
  CardPlace place_;
  double height_;
  double restRoll_;
  double restTiltX_, restTiltY_;
  Wobble tremorX_, tremorY_, swayX_, swayY_, roll_, tiltX_, tiltY_;
};

}  // namespace corvana::session
