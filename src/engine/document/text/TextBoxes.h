#pragma once

#include <filesystem>
#include <vector>

#include <opencv2/core.hpp>

#include "engine/vision/TfliteModel.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// Finds where lines of print are in a picture. One thread at a time. Movable.
class TextBoxes {
 public:
  static platform::Expected<TextBoxes> load(const std::filesystem::path& model);

  /// The lines of an 8-bit RGB picture as rectangles around their letters, in its pixels: the width
  /// runs along the line, and the angle (degrees clockwise) is within 45° of level. About 0.2 s.
  std::vector<cv::RotatedRect> find(const cv::Mat& rgb);

 private:
  std::vector<cv::RotatedRect> findInWide(const cv::Mat& rgb);

  explicit TextBoxes(TfliteModel model) : model_(std::move(model)) {}

  TfliteModel model_;
};

}  // namespace corvana::engine
