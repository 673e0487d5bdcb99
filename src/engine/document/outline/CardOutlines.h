#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "engine/document/outline/Quad.h"

namespace corvana::engine {

/// Where cards may lie in a still, at any turn, with their long sides as width; the likeliest
/// first, by their edges and by the lines of print in the picture, which a card's sides do not cut.
/// They are sought in the picture reduced to `searchSide` pixels. Which of them is a card, and
/// which way up, its content has to tell.
std::vector<Quad> cardOutlines(const cv::Mat& rgb, const std::vector<cv::RotatedRect>& print,
                               double searchSide);

}  // namespace corvana::engine
