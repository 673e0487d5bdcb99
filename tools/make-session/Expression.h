#pragma once

#include <array>
#include <vector>

#include <opencv2/core.hpp>

#include "engine/vision/FaceLandmarks.h"

namespace corvana::session {

/// A line through points sorted from left to right, as a height over x; flat beyond its ends.
class Contour {
 public:
  Contour() = default;
  explicit Contour(std::vector<cv::Point2d> points);
  double at(double x) const;
  double left() const { return points_.front().x; }
  double right() const { return points_.back().x; }

 private:
  std::vector<cv::Point2d> points_;
};

/// Closes the lids and opens the mouth of a resting face, each within its own small rectangle.
class Expression {
 public:
  /// face: the face's surface in pixels of the canvas.
  Expression(const engine::FaceMesh& face, double faceWidth, const cv::Mat& canvas);

  /// Draws into `canvas` what differs from the untouched `rest`. lids: 0 open to 1 closed; mouth: 0
  /// to 1.
  void draw(const cv::Mat& rest, cv::Mat& canvas, double lids, double mouth) const;

 private:
  struct Eye {
    Contour fold;   ///< stays where it is when the lid moves
    Contour upper;  ///< edge of the upper lid
    Contour lower;  ///< edge of the lower lid
    cv::Rect area;
  };
  Eye eye(const engine::FaceMesh& face, bool left, double faceWidth, cv::Size canvas) const;
  void drawEye(const Eye& eye, const cv::Mat& rest, cv::Mat& canvas, double lids) const;
  void drawMouth(const cv::Mat& rest, cv::Mat& canvas, double open) const;

  double faceWidth_;
  std::array<Eye, 2> eyes_;
  Contour lowerLip_;  ///< upper edge of the lower lip
  double mouthX_;
  double halfMouth_;
  double chin_;
  cv::Rect mouthArea_;
};

}  // namespace corvana::session
