#include "engine/document/outline/CardOutlines.h"

#include <algorithm>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "engine/document/outline/OutlineProposals.h"
#include "engine/document/outline/OutlineRanking.h"
#include "engine/document/outline/SideFit.h"

namespace corvana::engine {
namespace {

/// A picture of such proportions may be nothing but the card or page. Photographs of 4 to 3, which
/// have it somewhere on the ground, come no nearer to a page.
constexpr double kLeastAspect = 1.35;
constexpr double kMostAspect = 1.72;

Quad scaled(const Quad& quad, double factor) {
  Quad result;
  // A pixel of the small picture stands for the middle of those it was made from.
  std::ranges::transform(quad.corners, result.corners.begin(), [&](const auto& corner) {
    return platform::CGPoint{(corner.x + 0.5) * factor - 0.5, (corner.y + 0.5) * factor - 0.5};
  });
  return result;
}

/// The lines of print in the small picture, each as a stretch through its letters' middles.
std::vector<Segment> middles(const std::vector<cv::RotatedRect>& print, double factor) {
  std::vector<Segment> lines;
  for (const cv::RotatedRect& box : print) {
    const double angle = box.angle * CV_PI / 180;
    const bool isTall = box.size.height > box.size.width;
    const cv::Point2d along = isTall ? cv::Point2d(-std::sin(angle), std::cos(angle))
                                     : cv::Point2d(std::cos(angle), std::sin(angle));
    // Without what the box has around the letters.
    const double half = (std::max(box.size.width, box.size.height) -
                         0.6 * std::min(box.size.width, box.size.height)) /
                        2;
    const cv::Point2d middle(box.center);
    lines.push_back({(middle - half * along) / factor, (middle + half * along) / factor});
  }
  return lines;
}

}  // namespace

CardOutlines cardOutlines(const cv::Mat& rgb, const std::vector<cv::RotatedRect>& print,
                          double searchSide) {
  const double factor = std::max(1.0, std::max(rgb.cols, rgb.rows) / searchSide);
  cv::Mat small;
  cv::resize(rgb, small, {}, 1 / factor, 1 / factor, cv::INTER_AREA);
  OutlineRanking ranking(small, middles(print, factor));
  proposeOutlines(small, [&](const Quad& outline) { ranking.add(outline); });
  const auto fitted = [&](std::vector<Quad> quads) {
    for (Quad& quad : quads)
      quad = lying(fitSides(rgb, scaled(quad, factor), 2.5 * factor + 2));
    return quads;
  };
  CardOutlines outlines{fitted(ranking.best()), fitted(ranking.wholes())};
  const double width = rgb.cols;
  const double height = rgb.rows;
  const Quad whole = lying(Quad{
      {{{-0.5, -0.5}, {width - 0.5, -0.5}, {width - 0.5, height - 0.5}, {-0.5, height - 0.5}}}});
  if (whole.aspect() >= kLeastAspect && whole.aspect() <= kMostAspect)
    outlines.seen.push_back(whole);
  return outlines;
}

}  // namespace corvana::engine
