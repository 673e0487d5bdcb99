#pragma once

#include <filesystem>
#include <initializer_list>

#include <opencv2/core.hpp>

#include "engine/vision/FaceDetector.h"
#include "engine/vision/FaceLandmarks.h"

namespace corvana::tests {

std::filesystem::path fromSource(const char* path);

/// The sample portrait, RGB.
cv::Mat portrait(char person);

struct Placed {
  char person;
  double x, y;       ///< where the centre of the face box goes
  double faceWidth;  ///< width of the face box there
};

/// A grey 720×1280 camera picture with heads pasted in (twice the face box), the later on top.
platform::PixelBufferRef cameraFrame(std::initializer_list<Placed> people);

/// Loaded once for all tests of a process.
engine::FaceDetector& detector();
engine::FaceLandmarks& landmarks();

}  // namespace corvana::tests
