#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include "Random.h"

namespace corvana::photos {

/// A soft white spot, in millimetres of the card from its upper left corner.
struct Glare {
  cv::Point2d centre;
  double radius = 0.0;
  double strength = 0.0;  ///< 1: white in its middle whatever lies under it
};

inline constexpr double kThumbWidth = 17.0;  ///< millimetres

/// A thumb over the card's edge.
struct ThumbPlace {
  cv::Point2d tip;     ///< millimetres on the card
  double angle = 0.0;  ///< degrees; 0: comes from below
};

/// How one photograph is taken. Lengths are pixels of the photograph unless something else is said.
struct Conditions {
  std::string ground;
  double cardWidth = 0.0;      ///< 400 to 1,200
  double turn = 0.0;           ///< degrees, clockwise
  double tilt = 0.0;           ///< degrees from straight above, up to 15
  double tiltDirection = 0.0;  ///< degrees
  double groundTurn = 0.0;
  double aspect = 1.0;       ///< width over height of the photograph
  double fill = 0.7;         ///< of the photograph, by the card and what it lies in
  bool cut = false;          ///< the frame cuts something off, nothing that is read
  double focalLength = 1.0;  ///< in long sides of the photograph
  double defocus = 0.0;      ///< standard deviation of the blur
  double motion = 0.0;       ///< length of the smear
  double motionAngle = 0.0;
  double noise = 0.0;  ///< standard deviation in steps of 255
  double gain = 1.0;   ///< of the light in the middle
  double fall = 0.0;   ///< of the light from one side to the other
  double fallAngle = 0.0;
  double warmth = 0.0;  ///< −1 blue to 1 orange
  double shadow = 0.0;  ///< light that the shadow takes away, 0 to 1
  double shadowAngle = 0.0;
  double shadowPlace = 0.0;  ///< of its edge from the middle, in widths of the photograph
  std::optional<Glare> glare;
  std::optional<ThumbPlace> thumb;
  int quality = 90;  ///< of the JPEG
};

/// Draws the conditions of one photograph. contents: what on the card must stay to be read; thumbs
/// and the frame's edge keep clear of it, strong glare too.
Conditions drawConditions(const std::string& ground, cv::Size2d card,
                          const std::vector<cv::Rect2d>& contents, session::Random& random);

}  // namespace corvana::photos
