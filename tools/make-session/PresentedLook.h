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

/// The part of each pixel that lies on the sheet, 0 to 1.
cv::Mat shareOfSheet(const cv::Mat& mapX, const cv::Mat& mapY, const cv::Rect2d& sheet);

struct Display {
  const cv::Mat& mapX;
  const cv::Mat& mapY;
  double pixelPitch;  ///< of its pixels, in those of the person's picture
  double flicker;     ///< phase, radians
};

/// Gives the picture what a camera sees of a display: lifted blacks, a cooler white, the beat of
/// its pixels with the camera's, dark bands that wander, a reflection.
void litByDisplay(cv::Mat& picture, const Display& display);

/// Draws the display's dark frame around `screen`, and says which part of each pixel lies on the
/// device.
cv::Mat frameDisplay(cv::Mat& picture, const cv::Mat& mapX, const cv::Mat& mapY,
                     const cv::Rect2d& screen);

/// Lays `above` over `below` by `share`.
void lay(const cv::Mat& below, const cv::Mat& above, const cv::Mat& share, cv::Mat& picture);

}  // namespace corvana::session
