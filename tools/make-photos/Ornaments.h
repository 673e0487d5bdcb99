#pragma once

#include <string>

#include <opencv2/core.hpp>

/// What a card bears besides words and pictures. Places are pixels of an RGB picture.
namespace corvana::photos {

/// A state's emblem. shape: shield, ring (of stars), sprig or sun.
void drawShape(cv::Mat& picture, const cv::Rect2d& place, const std::string& shape,
               const cv::Scalar& colour);

/// The contacts of a chip: a gold plate, parted by fine lines.
void drawChip(cv::Mat& picture, const cv::Rect2d& place);

}  // namespace corvana::photos
