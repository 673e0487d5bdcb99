#pragma once

#include <functional>

#include <opencv2/core.hpp>

#include "engine/document/outline/Quad.h"

namespace corvana::engine {

/// Names every quadrilateral of an 8-bit RGB picture that something is drawn around: patches that
/// are lighter, darker or of another colour than their ground, patches enclosed by edges, and long
/// straight edges two and two across each other. Most are no cards. For pictures of some 640
/// pixels.
void proposeOutlines(const cv::Mat& rgb, const std::function<void(const Quad&)>& propose);

}  // namespace corvana::engine
