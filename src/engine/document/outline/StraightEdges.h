#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "engine/document/outline/Segment.h"

namespace corvana::engine {

/// The straight edges of an 8-bit RGB picture that may be sides of a card, the likeliest first:
/// long ones between surfaces that differ, as the two sides of a line of print do not. Pieces of
/// one line are joined.
std::vector<Segment> straightEdges(const cv::Mat& rgb);

}  // namespace corvana::engine
