#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/geometry/Geometry.h"

namespace corvana::engine {

/// One face in a picture. Right and left are the person's own: in an unmirrored picture the right
/// eye is the one further left.
struct Face {
  enum Keypoint : std::size_t { rightEye, leftEye, nose, mouth, rightEar, leftEar, kKeypointCount };

  /// From the brows to the chin, about as wide as the face, in pixels of the picture given in.
  platform::CGRect box;
  std::array<platform::CGPoint, kKeypointCount> keypoints;
  /// The detector's confidence, 0 to 1.
  float score = 0;

  /// The box's longer side: the one measure by which faces are called small or large.
  double size() const { return std::max(box.width, box.height); }
};

/// The face in a picture that is `factor` times as large.
Face scaled(Face face, double factor);

/// Area shared by both rectangles over the area covered by either, 0 to 1.
double overlap(const platform::CGRect& a, const platform::CGRect& b);

}  // namespace corvana::engine
