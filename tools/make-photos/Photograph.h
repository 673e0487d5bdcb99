#pragma once

#include <array>

#include "Conditions.h"
#include "Result.h"

namespace corvana::photos {

/// What lies before the camera: a painted card, or something that shows one.
struct Sheet {
  cv::Mat picture;   ///< RGBA
  cv::Rect2d place;  ///< of the picture, millimetres from the card's upper left corner
  cv::Size2d card;   ///< of the card in it
  std::vector<cv::Rect2d> contents;  ///< what on the card is to be read
};

struct Photograph {
  cv::Mat picture;  ///< RGB
  /// The card's upper left, upper right, lower right and lower left corner, as it is read.
  std::array<cv::Point2f, 4> corners{};
  bool cut = false;
};

/// Takes the photograph.
session::Result<Photograph> takePhotograph(const Sheet& sheet, const Conditions& conditions,
                                           session::Random& random);

}  // namespace corvana::photos
