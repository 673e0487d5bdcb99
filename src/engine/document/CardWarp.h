#pragma once

#include "engine/document/Quad.h"
#include "platform/media/PixelBuffer.h"

/// The straightened card and the measures of its picture. Pure.
namespace corvana::engine {

/// Size of a straightened card: about 300 dots an inch, what text recognition is made for.
inline constexpr int kCardWidth = 1000;
inline constexpr int kCardHeight = 630;

/// The card inside the outline as seen from straight above, rgb24; small cards are scaled up.
platform::PixelBufferRef straightened(const platform::PixelBuffer& picture, const Quad& outline);

/// The smallest upright rectangle of the picture around a rectangle of the straightened card.
platform::CGRect boundsInPicture(const platform::CGRect& onCard, const Quad& outline);

/// Share of the card lost in glare, 0 to 1: white patches that fade into what surrounds them. A
/// card that is white itself has none.
double glareFraction(const platform::PixelBuffer& card);

}  // namespace corvana::engine
