#pragma once

#include <string>
#include <vector>

#include "Design.h"
#include "Script.h"
#include "Typeface.h"

namespace corvana::photos {

/// What a field says on a card of the design: dates in its order, the rest as it is.
std::string printedValue(const Design& design, const session::CardData& card,
                         const std::string& field);

/// The plain value of a field: dates as YYYY-MM-DD.
std::string plainValue(const session::CardData& card, const std::string& field);

/// Paints the sides of the cards of one design. The pictures are RGBA, transparent outside the
/// rounded corners.
class SideArtist {
 public:
  static constexpr double kPixelsPerMillimetre = 16.0;

  static Result<SideArtist> create(const Design& design);

  /// Whether the letters of the values can write a text.
  bool canWrite(const std::string& value) const { return value_.has(value); }

  /// print: what the fields say; coded: what zone and code say, the same on a true card.
  /// photo: RGB, of any size with the sides' relation of the design's photo.
  cv::Mat paint(const SideDesign& side, const session::CardData& print,
                const session::CardData& coded, const cv::Mat& photo) const;

 private:
  SideArtist(const Design& design, session::Typeface label, session::Typeface value,
             session::Typeface title, session::Typeface machine);
  void write(cv::Mat& picture, const Writing& writing) const;
  void writeUpward(cv::Mat& picture, Writing writing) const;
  void field(cv::Mat& picture, const FieldPlace& place, const std::string& value) const;
  void zone(cv::Mat& picture, const session::CardData& card) const;

  Design design_;
  session::Typeface label_, value_, title_, machine_;
};

}  // namespace corvana::photos
