#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include <opencv2/core.hpp>

#include "engine/document/outline/Quad.h"
#include "engine/document/outline/Segment.h"

namespace corvana::engine {

/// The outline with its long sides as width.
Quad lying(Quad quad);

/// Outlines with how much they look like a card's.
using RankedOutlines = std::vector<std::pair<double, Quad>>;

/// Ranks outlines of one picture by how much they look like a card's: its shape, sides that are
/// seen, and lines of print that lie along it and are not cut by it. Pure.
class OutlineRanking {
 public:
  /// `rgb` is 8-bit, of some 640 pixels; `print` are its lines of print.
  OutlineRanking(const cv::Mat& rgb, std::vector<Segment> print);

  void add(const Quad& outline);
  /// The clearest outlines, no two nearly the same, and few in about the same place.
  std::vector<Quad> best() const;
  /// Outlines of a document's shape around the clearest, which a band along one side may end: none
  /// nearly the same as one of these.
  std::vector<Quad> wholes() const;

 private:
  std::optional<Quad> wholeBeyond(const Quad& part, std::size_t side) const;
  double printFit(const Quad& quad) const;
  double supportOf(const Quad& quad) const;
  double textureBeside(cv::Point2d a, cv::Point2d b) const;
  std::optional<double> sideSupport(cv::Point2d a, cv::Point2d b) const;

  cv::Mat derivatives_;
  cv::Size size_;
  std::vector<Segment> print_;
  RankedOutlines found_;
  RankedOutlines parts_;  ///< too short for cards
};

}  // namespace corvana::engine
