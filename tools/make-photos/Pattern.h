#pragma once

#include <cstdint>

#include "Design.h"

namespace corvana::photos {

/// The printed ground of a card: its colours from left to right, and fine lines over them. RGB.
cv::Mat printedGround(const Design& design, cv::Size size, std::uint64_t seed);

}  // namespace corvana::photos
