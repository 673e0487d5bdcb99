#pragma once

#include <deque>
#include <optional>

#include "engine/vision/FaceLandmarks.h"
#include "platform/foundation/Time.h"

namespace corvana::engine {

/// Gathers signs over time that a face is alive: a blink, and a turn of the head in which near
/// parts move against far ones, as no flat picture's do. Basic and honest: a good replay on a
/// screen shows both. So the score is reported, never used to refuse anyone. Pure; times come with
/// the frames.
class LivenessEvidence {
 public:
  struct Observation {
    platform::TimePoint time;
    FaceMesh mesh;
    double lidOpening = 0;
    /// What the single frame speaks for by itself, 0 to 1.
    float passiveScore = 0;
  };

  /// Takes the next frame of the same face and answers the score so far.
  float add(const Observation& observation);

  /// The score so far, 0 (nothing speaks for life) to 1 (blink and depth both seen in good
  /// pictures).
  float score() const;
  bool blinkSeen() const { return blinkSeen_; }
  /// Greatest lasting movement that no flat picture explains, in distances between the eyes.
  double parallax() const { return parallax_; }

 private:
  void watchLids(const Observation& observation);
  void watchDepth(const FaceMesh& mesh);

  std::optional<FaceMesh> first_;
  std::deque<double> recentParallax_;
  double parallax_ = 0;
  std::deque<double> recentOpenings_;
  std::optional<platform::TimePoint> closedSince_;
  bool blinkSeen_ = false;
  double passiveSum_ = 0;
  int count_ = 0;
};

/// How far the rigid parts of `face` (nose, brow, cheekbones, eye corners) lie from every place to
/// which a flat picture of `reference` could have been moved, tilted or scaled: root mean square,
/// in distances between the eyes.
double nonPlanarMotion(const FaceMesh& reference, const FaceMesh& face);

}  // namespace corvana::engine
