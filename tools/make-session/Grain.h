#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "Random.h"

namespace corvana::session {

/// What a phone's camera adds to a picture: noise and an exposure that drifts a little.
class Grain {
 public:
  /// light: on the scene, 1 in a well lit room; what is dark is noisy.
  Grain(double light, Random& random);

  /// luma: the picture's brightness plane, changed in place.
  void add(cv::Mat luma, double seconds);

 private:
  double light_;
  Random random_;
  Wobble exposure_;
  cv::Mat lighter_;
  cv::Mat darker_;
};

}  // namespace corvana::session
