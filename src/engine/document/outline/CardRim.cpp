#include "engine/document/outline/CardRim.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "engine/document/outline/CardLook.h"
#include "engine/document/outline/CardWarp.h"
#include "engine/document/outline/OutlineRanking.h"
#include "engine/document/outline/SideFit.h"

namespace corvana::engine {
namespace {

/// Of the outline, in the picture in which its edges are looked for.
constexpr double kSearchWidth = 500;
constexpr double kStep = 1 / kSearchWidth;
/// Of the outline's width and height.
constexpr double kWidestRim = 0.16;
constexpr double kHighestRim = 0.28;
constexpr double kLeastSupport = 0.7;  ///< of the moved side, and of all sides in the mean

Quad scaled(const Quad& quad, double factor) {
  Quad result;
  std::ranges::transform(quad.corners, result.corners.begin(), [&](const auto& corner) {
    return platform::CGPoint{(corner.x + 0.5) * factor - 0.5, (corner.y + 0.5) * factor - 0.5};
  });
  return result;
}

/// How far the sides are moved outwards, in shares of the outline: left or right, top or bottom.
struct Rim {
  double across = 0;  ///< to the left if negative
  double down = 0;    ///< to the top if negative
};

Quad around(const Quad& part, const Rim& rim) {
  const double height = straightenedHeight(part);
  return quadInPicture({std::min(0.0, rim.across) * kCardWidth, std::min(0.0, rim.down) * height,
                        (1 + std::abs(rim.across)) * kCardWidth, (1 + std::abs(rim.down)) * height},
                       part);
}

/// The rim that side n of the outline, from the top clockwise, leaves by a move outwards.
Rim rimBeside(std::size_t side, double move) {
  const double outwards = side == 1 || side == 2 ? move : -move;
  return side % 2 == 0 ? Rim{0, outwards} : Rim{outwards, 0};
}

class RimSearch {
 public:
  RimSearch(const cv::Mat& rgb, const Quad& part) : edges_(rgb, {}), part_(part) {}

  std::optional<Quad> best() const {
    std::optional<Quad> best;
    double bestSupport = kLeastSupport;
    for (const Rim& across : rims({3, 1}, kWidestRim)) {
      for (const Rim& down : rims({0, 2}, kHighestRim)) {
        const Quad whole = around(part_, {across.across, down.down});
        if (!completes(whole, part_)) continue;
        const double support = edges_.support(whole);
        if (support < bestSupport) continue;
        best = whole;
        bestSupport = support;
      }
    }
    return best;
  }

 private:
  /// None, and those beside one of two opposite sides that end at an edge.
  std::vector<Rim> rims(std::array<std::size_t, 2> sides, double most) const {
    std::vector<Rim> found{{}};
    for (const std::size_t side : sides) {
      for (double move = kStep; move < most; move += kStep) {
        const Rim rim = rimBeside(side, move);
        if (edges_.support(around(part_, rim), side) >= kLeastSupport) found.push_back(rim);
      }
    }
    return found;
  }

  OutlineRanking edges_;
  Quad part_;
};

}  // namespace

std::optional<Quad> withRim(const cv::Mat& rgb, const Quad& part) {
  const double factor = std::max(1.0, part.width() / kSearchWidth);
  cv::Mat small;
  cv::resize(rgb, small, {}, 1 / factor, 1 / factor, cv::INTER_AREA);
  const auto whole = RimSearch(small, scaled(part, 1 / factor)).best();
  if (!whole) return std::nullopt;
  return fitSides(rgb, scaled(*whole, factor), 1.5 * factor + 2);
}

}  // namespace corvana::engine
