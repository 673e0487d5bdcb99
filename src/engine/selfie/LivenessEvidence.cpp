#include "engine/selfie/LivenessEvidence.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace corvana::engine {
namespace {

// Points of the face that no expression moves much: nose, brow, temples, cheekbones, eye corners.
constexpr std::array<std::size_t, 26> kRigidPoints{1,   2,  4,   5,   195, 197, 6,   168, 9,
                                                   151, 10, 67,  297, 127, 356, 234, 454, 116,
                                                   345, 33, 133, 263, 362, 98,  327, 50};
constexpr std::size_t kRightEyeCorner = 33;
constexpr std::size_t kLeftEyeCorner = 263;

/// A blink: the opening falls below this part of its usual value and is back within this time.
constexpr double kClosedPart = 0.7;
constexpr double kReopenedPart = 0.85;
constexpr platform::Duration kLongestBlink = platform::seconds(0.8);
/// Frames by which the usual opening is known, and by which it is remembered.
constexpr std::size_t kFewestOpenings = 3;
constexpr std::size_t kMostOpenings = 31;

/// The landmarks of a still face tremble, and those of a tilted photo follow the network's idea of
/// faces a little: below the first is nothing, from the second on it is depth without doubt.
constexpr double kNoParallax = 0.025;
constexpr double kFullParallax = 0.05;
/// So many frames must agree, so that one misplaced mesh is no evidence.
constexpr std::size_t kAgreeingFrames = 3;

constexpr double kPassiveWeight = 0.2;
constexpr double kBlinkWeight = 0.4;
constexpr double kDepthWeight = 0.4;

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::ranges::nth_element(values, middle);
  return *middle;
}

using Column = std::array<double, kRigidPoints.size()>;

double dot(const Column& a, const Column& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i)
    sum += a[i] * b[i];
  return sum;
}

/// Takes out of `column` what the direction of `unit` explains.
void remove(Column& column, const Column& unit) {
  const double part = dot(column, unit);
  for (std::size_t i = 0; i < column.size(); ++i)
    column[i] -= part * unit[i];
}

void normalize(Column& column) {
  const double length = std::sqrt(dot(column, column));
  for (double& value : column)
    value /= std::max(length, 1e-9);
}

template <typename Coordinate>
Column columnOf(Coordinate coordinate) {
  Column column;
  for (std::size_t i = 0; i < column.size(); ++i)
    column[i] = coordinate(kRigidPoints[i]);
  return column;
}

}  // namespace

double nonPlanarMotion(const FaceMesh& reference, const FaceMesh& face) {
  // What an affine map of the reference can explain is spanned by 1, x and y: a basis, made square.
  Column one = columnOf([](std::size_t) { return 1.0; });
  Column x = columnOf([&](std::size_t i) { return reference[i].x; });
  Column y = columnOf([&](std::size_t i) { return reference[i].y; });
  normalize(one);
  remove(x, one);
  normalize(x);
  remove(y, one);
  remove(y, x);
  normalize(y);

  double squares = 0;
  for (Column rest : {columnOf([&](std::size_t i) { return face[i].x; }),
                      columnOf([&](std::size_t i) { return face[i].y; })}) {
    for (const Column* known : {&one, &x, &y})
      remove(rest, *known);
    squares += dot(rest, rest);
  }
  const SurfacePoint& right = face[kRightEyeCorner];
  const SurfacePoint& left = face[kLeftEyeCorner];
  const double eyes = std::hypot(left.x - right.x, left.y - right.y);
  return std::sqrt(squares / kRigidPoints.size()) / std::max(eyes, 1.0);
}

void LivenessEvidence::watchLids(const Observation& observation) {
  if (closedSince_ && observation.time - *closedSince_ > kLongestBlink) {
    // No blink: other light, another angle. What is usual has to be learned anew.
    closedSince_.reset();
    recentOpenings_.clear();
  }
  if (recentOpenings_.size() >= kFewestOpenings) {
    const double usual = median({recentOpenings_.begin(), recentOpenings_.end()});
    if (observation.lidOpening < kClosedPart * usual) {
      if (!closedSince_) closedSince_ = observation.time;
    } else if (closedSince_ && observation.lidOpening > kReopenedPart * usual) {
      blinkSeen_ = true;
      closedSince_.reset();
    }
  }
  if (closedSince_) return;
  recentOpenings_.push_back(observation.lidOpening);
  if (recentOpenings_.size() > kMostOpenings) recentOpenings_.pop_front();
}

void LivenessEvidence::watchDepth(const FaceMesh& mesh) {
  if (!first_) first_ = mesh;
  recentParallax_.push_back(nonPlanarMotion(*first_, mesh));
  if (recentParallax_.size() < kAgreeingFrames) return;
  if (recentParallax_.size() > kAgreeingFrames) recentParallax_.pop_front();
  parallax_ = std::max(parallax_, *std::ranges::min_element(recentParallax_));
}

float LivenessEvidence::add(const Observation& observation) {
  watchLids(observation);
  watchDepth(observation.mesh);
  passiveSum_ += observation.passiveScore;
  ++count_;
  return score();
}

float LivenessEvidence::score() const {
  if (count_ == 0) return 0;
  const double depth =
      std::clamp((parallax_ - kNoParallax) / (kFullParallax - kNoParallax), 0.0, 1.0);
  return static_cast<float>(kPassiveWeight * passiveSum_ / count_ +
                            kBlinkWeight * (blinkSeen_ ? 1 : 0) + kDepthWeight * depth);
}

}  // namespace corvana::engine
