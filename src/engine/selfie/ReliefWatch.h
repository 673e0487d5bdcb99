#pragma once

#include <deque>
#include <optional>

#include "engine/selfie/FaceView.h"

namespace corvana::engine {

/// Looks for movement of a face's near parts against its far ones. Pure.
class ReliefWatch {
 public:
  void add(const FaceView& face);
  /// Greatest lasting `reliefMotion` against the first face.
  double greatest() const { return greatest_; }
  /// The last face's alone, which may not last.
  double last() const { return recent_.empty() ? 0 : recent_.back(); }

 private:
  std::optional<FaceView> first_;
  std::deque<double> recent_;
  double greatest_ = 0;
};

/// How far `face` is `reference` turned in depth, at least: the sine of the turn less two standard
/// deviations. It is the movement of the skin of the rigid parts (nose, brow, cheeks, eye corners)
/// along their depth, beside whatever third-order polynomials of the place explain. These hold what
/// tilting a picture does to it (a homography, as far as a face at arm's length can show its rest),
/// and bending, turning and turning while bent, of a sheet that has no crease in the face. The nose
/// that stands out of a living face they do not hold.
double reliefMotion(const FaceView& reference, const FaceView& face);

}  // namespace corvana::engine
