#include "engine/selfie/ReliefWatch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include <opencv2/core.hpp>

namespace corvana::engine {
namespace {

/// Points of the face that no expression moves much: nose, brow, cheeks, eye corners. None lies at
/// its outline, where what is seen beside the skin is the room.
constexpr std::array<std::size_t, 59> kRigidPoints{
    1,   2,   4,   5,   195, 197, 6,   168, 9,   151, 10,  67,  297, 33,  133,
    263, 362, 98,  327, 50,  280, 48,  278, 115, 344, 131, 360, 198, 420, 122,
    351, 193, 417, 8,   108, 337, 69,  299, 109, 338, 117, 346, 101, 330, 36,
    266, 142, 371, 126, 355, 47,  277, 114, 343, 188, 412, 174, 399, 94};

/// So many frames must agree, so that one picture that was followed wrongly is no evidence.
constexpr std::size_t kAgreeingFrames = 3;
/// Fewer points say too little beside what has to be explained.
constexpr std::size_t kFewestPoints = 30;

constexpr int kOrder = 3;
constexpr int kPolynomials = (kOrder + 1) * (kOrder + 2) / 2;
/// Of one direction: the polynomials and, last, the depth.
constexpr int kTerms = kPolynomials + 1;
constexpr int kUnknowns = 2 * kTerms;
using Equations = cv::Matx<double, 2, kUnknowns>;
using Square = cv::Matx<double, kUnknowns, kUnknowns>;
using Unknowns = cv::Matx<double, kUnknowns, 1>;

/// Keeps the equations solvable where no texture tells of a direction.
constexpr double kRidge = 1e-9;
/// Solved so often, each time with less weight for what does not fit: a lid, a shine, a strand of
/// hair. Beyond twice the median an error counts in proportion to its size, not to its square.
constexpr int kRounds = 5;
constexpr double kMostError = 2;
constexpr double kDeviations = 2;

/// What one point must do, in distances between the eyes.
struct Seen {
  Equations equations;
  cv::Vec2d motion;
  cv::Matx22d worth;
  double weight = 1;

  double error(const Unknowns& unknowns) const {
    const cv::Matx21d wrong = cv::Matx21d(motion[0], motion[1]) - equations * unknowns;
    return std::sqrt(std::max((wrong.t() * worth * wrong)(0, 0), 0.0));
  }
};

struct Solution {
  Unknowns unknowns;
  Square inverse;
};

Equations equationsOf(const SurfacePoint& point, const SurfacePoint& origin) {
  const double x = (point.x - origin.x) / FaceView::kEyes;
  const double y = (point.y - origin.y) / FaceView::kEyes;
  Equations equations = Equations::zeros();
  int term = 0;
  const auto set = [&](double value) {
    equations(0, term) = equations(1, kTerms + term) = value;
    ++term;
  };
  for (int order = 0; order <= kOrder; ++order)
    for (int power = 0; power <= order; ++power)
      set(std::pow(x, power) * std::pow(y, order - power));
  set(point.z / FaceView::kEyes);
  return equations;
}

std::vector<Seen> seenBetween(const FaceView& reference, const FaceView& face) {
  const SurfacePoint& right = reference.mesh[kRightEyeOuterCorner];
  const SurfacePoint& left = reference.mesh[kLeftEyeOuterCorner];
  const SurfacePoint middle{(right.x + left.x) / 2, (right.y + left.y) / 2, 0};
  std::vector<Seen> seen;
  for (const SkinMotion& motion : skinMotions(reference, face, kRigidPoints)) {
    seen.push_back({equationsOf(reference.mesh[motion.point], middle),
                    cv::Vec2d(motion.x, motion.y) / FaceView::kEyes,
                    {motion.xx, motion.xy, motion.xy, motion.yy}});
  }
  return seen;
}

Solution solve(const std::vector<Seen>& seen) {
  Square squares = Square::eye() * kRidge;
  Unknowns sums = Unknowns::zeros();
  for (const Seen& point : seen) {
    const auto weighted = point.equations.t() * (point.worth * point.weight);
    squares += weighted * point.equations;
    sums += weighted * cv::Matx21d(point.motion[0], point.motion[1]);
  }
  const Square inverse = squares.inv(cv::DECOMP_CHOLESKY);
  return {inverse * sums, inverse};
}

/// The variance of an error, of the points as they are weighted now.
double weigh(std::vector<Seen>& seen, const Unknowns& unknowns) {
  std::vector<double> errors;
  for (const Seen& point : seen)
    errors.push_back(point.error(unknowns));
  std::vector<double> sorted = errors;
  const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
  std::ranges::nth_element(sorted, middle);
  const double most = kMostError * std::max(*middle, 1e-6);
  double weights = 0, squares = 0;
  for (std::size_t i = 0; i < seen.size(); ++i) {
    seen[i].weight = std::min(1.0, most / std::max(errors[i], 1e-9));
    weights += seen[i].weight;
    squares += seen[i].weight * errors[i] * errors[i];
  }
  return squares / std::max(2 * weights - kUnknowns, 1.0);
}

}  // namespace

double reliefMotion(const FaceView& reference, const FaceView& face) {
  std::vector<Seen> seen = seenBetween(reference, face);
  if (seen.size() < kFewestPoints) return 0;
  Solution solution{};
  double variance = 0;
  for (int round = 0; round < kRounds; ++round) {
    solution = solve(seen);
    variance = weigh(seen, solution.unknowns);
  }
  constexpr int kAlongX = kTerms - 1, kAlongY = kUnknowns - 1;
  const double turn = std::hypot(solution.unknowns(kAlongX), solution.unknowns(kAlongY));
  const double doubt = std::sqrt(variance * std::max(solution.inverse(kAlongX, kAlongX),  //
                                                     solution.inverse(kAlongY, kAlongY)));
  return std::max(turn - kDeviations * doubt, 0.0);
}

void ReliefWatch::add(const FaceView& face) {
  if (!first_) first_ = face;
  recent_.push_back(reliefMotion(*first_, face));
  if (recent_.size() < kAgreeingFrames) return;
  if (recent_.size() > kAgreeingFrames) recent_.pop_front();
  greatest_ = std::max(greatest_, *std::ranges::min_element(recent_));
}

}  // namespace corvana::engine
