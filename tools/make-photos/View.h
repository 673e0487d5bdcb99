#pragma once

#include <array>

#include <opencv2/core.hpp>

#include "Conditions.h"

namespace corvana::photos {

/// Where the card lies before the camera: brings millimetres of the card's plane into pixels.
class View {
 public:
  /// outline: what of the plane should be in the frame, in millimetres from the card's upper left
  /// corner; contents: what must not be cut.
  View(const Conditions& conditions, cv::Size2d card, const cv::Rect2d& outline,
       const std::vector<cv::Rect2d>& contents);

  cv::Size frame() const { return frame_; }
  /// Pixels a millimetre in the card's middle.
  double scale() const { return scale_; }
  /// Whether the frame cut something off in the end.
  bool cuts() const { return cuts_; }

  cv::Point2d at(cv::Point2d millimetres) const;
  /// Upper left, upper right, lower right, lower left of a rectangle of the card.
  std::array<cv::Point2f, 4> corners(const cv::Rect2d& millimetres) const;
  /// A rectangle that covers the whole frame, laid on the card's plane at another turn, and its
  /// corners in the frame.
  struct Spread {
    cv::Size2d millimetres;
    std::array<cv::Point2f, 4> corners;
  };
  Spread spread(double turn) const;

 private:
  cv::Point2d project(cv::Point2d fromMiddle, double turn) const;
  cv::Point2d onPlane(cv::Point2d pixel) const;
  cv::Rect2d bounds(const std::vector<cv::Rect2d>& boxes) const;
  void placeInFrame(const Conditions& conditions, const cv::Rect2d& outline,
                    const std::vector<cv::Rect2d>& contents);

  cv::Point2d middle_;  ///< of the card, millimetres
  double turn_ = 0.0;
  cv::Matx33d tilt_;
  double scale_ = 1.0;
  double focal_ = 1.0;
  cv::Point2d shift_;
  cv::Size frame_;
  bool cuts_ = false;
};

}  // namespace corvana::photos
