#pragma once

#include <opencv2/core.hpp>

#include "Result.h"
#include "Script.h"
#include "Typeface.h"

namespace corvana::session {

/// Draws the two sides of a fictitious identity card of the size ID-1 (85.60 × 53.98 mm, corners of
/// 3.18 mm; ISO/IEC 7810). The pictures are RGBA, transparent outside the rounded corners.
class CardArtist {
 public:
  static constexpr double kPixelsPerMillimetre = 20.0;
  static constexpr double kWidth = 85.60;
  static constexpr double kHeight = 53.98;
  /// Width over height of the holder's photo on the front.
  static constexpr double kPhotoAspect = 26.0 / 33.0;

  static Result<CardArtist> create();

  /// photo: RGB, of kPhotoAspect.
  cv::Mat front(const CardData& card, const cv::Mat& photo) const;
  cv::Mat back(const CardData& card) const;

 private:
  CardArtist(Typeface regular, Typeface bold, Typeface machine);
  void field(cv::Mat& picture, const std::string& label, const std::string& value,
             cv::Point2d place, double room) const;
  void title(cv::Mat& picture, const CardData& card) const;
  void machineReadableZone(cv::Mat& picture, const CardData& card) const;

  Typeface regular_;
  Typeface bold_;
  Typeface machine_;
};

}  // namespace corvana::session
