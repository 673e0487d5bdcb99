#pragma once

#include <opencv2/core.hpp>

#include "CardMotion.h"

namespace corvana::session {

/// Lays the card and the thumb that holds it over a picture.
class CardView {
 public:
  /// front, back: RGBA drawings of the card's sides; width: of the card in the film, pixels.
  CardView(const cv::Mat& front, const cv::Mat& back, double width, const cv::Scalar& skin);

  void draw(const CardPose& pose, cv::Mat& picture) const;

 private:
  cv::Mat front_;
  cv::Mat back_;
  cv::Mat thumb_;
  double thumbWidth_;
};

/// Lays `layer` (RGBA) over `picture` (RGB) so that its corners come to lie at `corners`.
void layOver(cv::Mat& picture, const cv::Mat& layer, const std::array<cv::Point2f, 4>& corners,
             double light);

}  // namespace corvana::session
