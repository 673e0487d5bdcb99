#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "engine/document/outline/Quad.h"

namespace corvana::engine {

/// Where cards may lie in a still, at any turn, with their long sides as width.
struct CardOutlines {
  std::vector<Quad> seen;  ///< the likeliest first
  /// Of a document's shape, around a seen one that a band along one side of the card may end.
  std::vector<Quad> wholes;
};

/// Looks for outlines by their edges and by the lines of print in the picture, which a card's sides
/// do not cut, in the picture reduced to `searchSide` pixels. Which of them is a card, and which
/// way up, its content has to tell.
CardOutlines cardOutlines(const cv::Mat& rgb, const std::vector<cv::RotatedRect>& print,
                          double searchSide);

}  // namespace corvana::engine
