#pragma once

#include <vector>

#include <opencv2/core.hpp>

/// Straight edges of a picture, for the search of a card's sides.
namespace corvana::engine {

/// Edges that run across the picture (within 26° of level) and edges that run down it.
enum class Course { across, down };

/// A straight line in a picture, in its pixels.
struct EdgeLine {
  cv::Vec2d direction;  ///< unit length; to the right, or down
  cv::Point2d point;    ///< some point on it
  double votes = 0;     ///< edge pixels along it
};

/// Thin edges of a picture, with those of either course apart.
class EdgeMap {
 public:
  /// Finds the edges of an 8-bit RGB picture.
  explicit EdgeMap(const cv::Mat& rgb);

  /// The lines with most edge pixels, strongest first, no two nearly the same.
  std::vector<EdgeLine> lines(Course course, std::size_t most) const;

  /// Share of the stretch from a to b, between its ends' rounded corners, that lies on an edge of
  /// this course (0 to 1).
  double support(Course course, cv::Point2d a, cv::Point2d b) const;

  cv::Size size() const { return across_.size(); }

 private:
  const cv::Mat& edges(Course course) const { return course == Course::across ? across_ : down_; }

  cv::Mat across_;
  cv::Mat down_;
  cv::Mat wideAcross_;  // one pixel thicker to either side
  cv::Mat wideDown_;
  cv::Mat dx_;
  cv::Mat dy_;
};

/// Where two lines meet; they must not be parallel.
cv::Point2d meeting(const EdgeLine& a, const EdgeLine& b);

}  // namespace corvana::engine
