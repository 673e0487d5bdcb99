#pragma once

#include <deque>
#include <optional>

#include "engine/vision/FaceLandmarks.h"

namespace corvana::engine {

/// Looks for movement of a face's near parts against its far ones. Pure.
class ReliefWatch {
 public:
  void add(const FaceMesh& mesh);
  /// Greatest lasting `reliefMotion` against the first face.
  double greatest() const { return greatest_; }

 private:
  std::optional<FaceMesh> first_;
  std::deque<double> recent_;
  double greatest_ = 0;
};

/// How far `face` is `reference` turned in depth, as the sine of the turn: the movement of the
/// rigid parts (nose, brow, cheekbones, eye corners) along their depth, after everything was taken
/// out that second-order polynomials of the place explain. These hold what any tilt of a flat
/// picture does to it (a homography, as far as a face at arm's length can show its rest) and what
/// bending the sheet does; the nose that stands out of a living face they do not hold.
double reliefMotion(const FaceMesh& reference, const FaceMesh& face);

}  // namespace corvana::engine
