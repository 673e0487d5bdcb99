#pragma once

#include <optional>

#include "corvana/DetectedData.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// What tells copies of a card from the card.
struct CopyFigures {
  /// How far the colours lie apart, in shares of the brightness, once the light's own colour is
  /// taken away: 0.004 to 0.012 on most grey copies, hardly less than 0.03 on a card.
  double colour = 0;
  /// `colouredFringes`: less than 0.006 on a card, 0.008 to 0.07 on a display.
  double fringes = 0;
  /// Brightness of the blackest print in shares of the ground around it: ink on plain paper is
  /// pale. Absent where the picture is not sharp enough for the print's strokes to show their own
  /// black.
  std::optional<double> black;
};

/// Measures a straightened card, whose `printSharpness` is known. Pure.
CopyFigures copyFigures(const platform::PixelBuffer& card, double sharpness);

/// From here on a score makes a card suspect.
inline constexpr float kSuspectCopy = 0.5F;
/// From here on it leaves no reasonable doubt.
inline constexpr float kSureCopy = 0.9F;

/// The figures as scores, 0 to 1: that of a grey copy or a print, that of a display, and what both
/// leave over for the card itself. Pale black alone never makes a card more than suspect, and
/// colours are only missed beside a photo: many backs have none of their own.
corvana::RealnessScores realnessOf(const CopyFigures& figures, bool hasPhoto);

/// The greater one of the scores that speak for a copy.
float copyScore(const corvana::RealnessScores& scores);

/// Says in the data what the scores tell.
void judgeRealness(const corvana::RealnessScores& scores, corvana::DetectedData& data);

}  // namespace corvana::engine
