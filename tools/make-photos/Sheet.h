#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "Design.h"

namespace corvana::photos {

/// What lies before the camera: a painted side, or something that it is a part of.
struct Sheet {
  cv::Mat picture;                   ///< RGBA
  cv::Rect2d place;                  ///< of the picture, millimetres from the side's upper left
  cv::Size2d card;                   ///< of the side
  std::vector<cv::Rect2d> contents;  ///< what on the side is to be read

  double pixelsPerMillimetre() const { return picture.cols / place.width; }
};

/// The side by itself; of a book, with the page that hangs on its upper edge.
Sheet layOut(const cv::Mat& painted, const Design& design, const SideDesign& side);

}  // namespace corvana::photos
