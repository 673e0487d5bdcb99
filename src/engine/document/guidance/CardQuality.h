#pragma once

#include <optional>
#include <string>

#include "corvana/IDCapture.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// How well a card's print can be seen in one picture.
struct CardQuality {
  double sharpness = 1;     ///< `printSharpness`
  double glare = 0;         ///< `glareFraction`
  double brightness = 1;    ///< `brightnessOf` the card
  double coveredPrint = 0;  ///< `PrintLook::covered`
};

/// Why a card is not read although it is in its place.
enum class CardFlaw { tooDark, tooMuchGlare, blurred, covered, copy };

/// "tooDark", "tooMuchGlare", "blurred", "covered", "copy".
const char* nameOf(CardFlaw flaw);

/// What was measured, and the limit that it does not keep.
struct FlawFound {
  CardFlaw flaw = CardFlaw::tooDark;
  double value = 0;
  double limit = 0;
};

/// The flaw of the picture that is to be mended first: in the dark nothing else can be judged.
std::optional<FlawFound> flawOf(const CardQuality& quality,
                                const corvana::IDCapture::Options& limits);

/// How steep the edges of a straightened card's print are: the share of an edge's contrast that
/// lies within one pixel of a card or page 500 pixels wide, 0 to about 0.4. Whether there is much
/// print or little, bold or pale, makes little difference, and neither does noise.
double printSharpness(const platform::PixelBuffer& card);

/// Brightness of the lightest tenth of a picture, 0 to 1: paper and skin, whatever the rest is.
double brightnessOf(const platform::PixelBuffer& picture);

}  // namespace corvana::engine
