#pragma once

#include <vector>

#include <opencv2/core.hpp>

#include "engine/document/text/TextReader.h"

namespace corvana::engine {

/// A card's print against what it looked like when it was read.
struct PrintLook {
  double covered = 0;     ///< share that is covered, 0 to 1
  double leastAlike = 0;  ///< correlation of the piece that has changed most; 0 when none is known
};

/// Tells how much of a card's print has been covered since it was read. A finger is known by what
/// it takes away: where there was print, something without print lies now, while the rest of the
/// card is as it was. What was covered from the beginning is not seen. One thread.
class PrintWatch {
 public:
  /// Keeps what the print of a straightened card looks like.
  void remember(const platform::PixelBuffer& card, const std::vector<TextLine>& lines);
  void forget() { pieces_.clear(); }
  /// Looks at the remembered print on a straightened card. Another card or side is forgotten.
  PrintLook look(const platform::PixelBuffer& card);

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
