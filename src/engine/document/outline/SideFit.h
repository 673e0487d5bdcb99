#pragma once

#include <opencv2/core.hpp>

#include "engine/document/outline/Quad.h"

namespace corvana::engine {

/// The outline moved onto the picture's edges: along each side the strongest step within `reach`
/// pixels is sought, and a line laid through the steps that agree (fingers over an edge do not).
/// A side without enough agreement stays. `rgb` is 8-bit.
Quad fitSides(const cv::Mat& rgb, const Quad& rough, double reach);

}  // namespace corvana::engine
