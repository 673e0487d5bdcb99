#pragma once

#include <filesystem>

#include <opencv2/core.hpp>

#include "engine/vision/TfliteModel.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// Tells whether a line of print stands on its head. One thread at a time. Movable.
class LineTurn {
 public:
  static platform::Expected<LineTurn> load(const std::filesystem::path& model);

  /// How likely an 8-bit RGB picture of a line, `kLineHeight` high, is upside down, 0 to 1; about
  /// 0.5 ms. Of a long line the beginning is looked at.
  double upsideDown(const cv::Mat& line);

 private:
  explicit LineTurn(TfliteModel model) : model_(std::move(model)) {}

  TfliteModel model_;
};

}  // namespace corvana::engine
