#pragma once

#include <opencv2/core.hpp>

namespace corvana::engine {

/// A straight stretch of a picture, in its pixels: an edge, or a line of print.
struct Segment {
  cv::Point2d from;
  cv::Point2d to;
  double length() const { return cv::norm(to - from); }
  cv::Point2d direction() const { return (to - from) / length(); }
};

/// The sine of the angle from a to b, times their lengths.
inline double cross(cv::Point2d a, cv::Point2d b) {
  return a.x * b.y - a.y * b.x;
}

}  // namespace corvana::engine
