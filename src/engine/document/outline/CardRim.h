#pragma once

#include <optional>

#include <opencv2/core.hpp>

#include "engine/document/outline/Quad.h"

namespace corvana::engine {

/// The outline of the whole document of which another holds all but a rim: a band along one of its
/// sides, or along two that meet, may end more clearly against the card than against the ground.
/// Absent where the outline has a document's shape, or where none around it has. `rgb` is 8-bit.
std::optional<Quad> withRim(const cv::Mat& rgb, const Quad& part);

}  // namespace corvana::engine
