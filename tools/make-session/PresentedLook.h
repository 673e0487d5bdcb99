#pragma once

#include <opencv2/core.hpp>

#include "Random.h"

/// How prints, displays and the room around them look. Pictures are RGB; maps say for each pixel of
/// the film where on the sheet or display it lies, in pixels of the person's picture.
namespace corvana::session {

/// A room without a person: a wall, a door, a shelf.
cv::Mat emptyRoom(cv::Size size, Random& random);

/// Gives the picture the lesser range of a print's colours.
void printed(cv::Mat& picture);

/// How far inside the sheet each pixel lies, in the map's pixels; negative outside.
cv::Mat depthInside(const cv::Mat& mapX, const cv::Mat& mapY, const cv::Rect2d& sheet);

struct Display {
  const cv::Mat& mapX;
  const cv::Mat& mapY;
  double pixelPitch;  ///< of its pixels, in those of the person's picture
  double flicker;     ///< phase, radians
};

/// Gives the picture what a camera sees of a display: lifted blacks, a cooler white, the beat of
/// its pixels with the camera's, dark bands that wander, a reflection.
void litByDisplay(cv::Mat& picture, const Display& display);

/// Width of the dark frame around a display, pixels.
inline constexpr float kBezel = 26.0F;

/// Draws the dark frame in place of what does not lie inside the display.
void frameDisplay(const cv::Mat& inside, cv::Mat& picture);

/// Shows `below` in place of what lies more than `margin` outside.
void lay(const cv::Mat& below, const cv::Mat& inside, float margin, cv::Mat& picture);

}  // namespace corvana::session
