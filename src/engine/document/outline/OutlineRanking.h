#pragma once

#include <optional>
#include <utility>
#include <vector>

#include <opencv2/core.hpp>

#include "engine/document/outline/Quad.h"
#include "engine/document/outline/Segment.h"

namespace corvana::engine {

/// The outline with its long sides as width.
Quad lying(Quad quad);

/// Ranks outlines of one picture by how much they look like a card's: its shape, sides that are
/// seen, and lines of print that lie along it and are not cut by it. Pure.
class OutlineRanking {
 public:
  /// `rgb` is 8-bit, of some 640 pixels; `print` are its lines of print.
  OutlineRanking(const cv::Mat& rgb, std::vector<Segment> print);

  void add(const Quad& outline);
  /// The clearest outlines, no two nearly the same, and few in about the same place.
  std::vector<Quad> best();

 private:
  double printFit(const Quad& quad) const;
  double supportOf(const Quad& quad) const;
  double textureBeside(cv::Point2d a, cv::Point2d b) const;
  std::optional<double> sideSupport(cv::Point2d a, cv::Point2d b) const;

  cv::Mat derivatives_;
  cv::Size size_;
  std::vector<Segment> print_;
  std::vector<std::pair<double, Quad>> found_;
};

}  // namespace corvana::engine
