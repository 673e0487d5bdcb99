#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "engine/vision/Face.h"
#include "engine/vision/TfliteModel.h"

/// One look of the BlazeFace network through a square window; the detector's inner part.
namespace corvana::engine::blazeface {

/// The network's input is a square of this side.
inline constexpr int kInputSide = 128;

/// Faces the network is less sure of than this are dropped; half is the network's own balance.
inline constexpr float kLeastScore = 0.5F;

TfliteModel::Shapes shapes();

/// The faces in the window, which may stick out of the picture (black there), in pixels of the
/// picture; overlapping answers are merged.
std::vector<Face> look(TfliteModel& model, const cv::Mat& rgb, const cv::Rect& window);

/// Merges faces that overlap by more than 0.3 into their mean, weighted by their scores.
std::vector<Face> merged(std::vector<Face> faces);

}  // namespace corvana::engine::blazeface
