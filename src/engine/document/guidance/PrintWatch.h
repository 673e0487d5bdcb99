#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "engine/document/text/TextReader.h"

namespace corvana::engine {

/// Tells how much of a card's print has been covered since it was read. A finger is known by what
/// it takes away: where there was print, something without print lies now, while the rest of the
/// card is as it was. What was covered from the beginning is not seen. One thread.
class PrintWatch {
 public:
  /// Keeps what the print of a straightened card looks like.
  void remember(const platform::PixelBuffer& card, const std::vector<TextLine>& lines);
  void forget() { pieces_.clear(); }
  /// The share of the remembered print that is covered on a straightened card, 0 to 1; 0 on
  /// another card or side, which is then forgotten.
  double covered(const platform::PixelBuffer& card);

 private:
  struct Piece {
    cv::Rect place;  ///< in the reduced picture
    cv::Mat look;
    double detail = 0;
  };

  std::vector<Piece> pieces_;
  cv::Size size_;  ///< of the reduced picture
};

}  // namespace corvana::engine
