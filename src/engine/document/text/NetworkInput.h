#pragma once

#include <opencv2/core.hpp>

#include "engine/vision/TfliteModel.h"

namespace corvana::engine {

/// Writes an 8-bit RGB picture into the top left of the network's input (`size`), as the text
/// networks were trained: blue first, -1 to 1; what the picture does not fill is 0.
void fillInput(TfliteModel& model, const cv::Mat& rgb, cv::Size size);

}  // namespace corvana::engine
