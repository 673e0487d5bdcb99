#pragma once

#include <string>
#include <vector>

#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// How far a word reaches across the card, in pixels.
struct WordReach {
  double from = 0;  ///< middle of its first letter
  double to = 0;    ///< middle of its last letter
};

/// A line of print as a reader saw it, or the part of one that stands by itself.
struct TextLine {
  std::string text;            ///< UTF-8, with accents
  platform::CGRect box;        ///< in pixels of the straightened card
  double confidence = 0;       ///< 0 to 1
  double tilt = 0;             ///< degrees clockwise by which the box is turned about its middle
  double leastConfidence = 1;  ///< of its least sure letter
  /// Of each word between blanks, in the order of the text; empty where the reader can't tell.
  std::vector<WordReach> words{};
  /// What it may say as well, as far as the reader was unsure of letters; the likeliest first.
  std::vector<std::string> others{};
};

/// Reads the print of a straightened card. The same picture gives the same text. One thread at a
/// time.
class TextReader {
 public:
  virtual ~TextReader() = default;

  /// Everything that was read, sure or not, photo and machine-readable zone included.
  virtual std::vector<TextLine> read(const platform::PixelBuffer& card) = 0;

  /// Reads lines again where they were before, on another picture of the same card in the same
  /// place: cheaper than to look for them.
  virtual std::vector<TextLine> readAgain(const platform::PixelBuffer& card,
                                          const std::vector<TextLine>& known) = 0;

  /// Name and version. Texts compare only with those of the same reader.
  virtual std::string name() const = 0;
};

}  // namespace corvana::engine
