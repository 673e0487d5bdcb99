#pragma once

#include "engine/document/outline/Quad.h"
#include "platform/media/PixelBuffer.h"

/// The straightened card and the measures of its picture. Pure.
namespace corvana::engine {

/// Size of a straightened card: about 300 dots an inch, what text recognition is made for.
inline constexpr int kCardWidth = 1000;
inline constexpr int kCardHeight = 630;
/// The larger sizes of documents, 105 by 74 and 125 by 88 mm, have the same proportions.
inline constexpr int kPageHeight = 704;

/// The height that a straightened document gets: a card's or a page's, whichever the outline is
/// more like.
int straightenedHeight(const Quad& outline);

/// The card inside the outline as seen from straight above, rgb24; small cards are scaled up.
platform::PixelBufferRef straightened(const platform::PixelBuffer& picture, const Quad& outline);
/// The same in grey, gray8, made quickly: to be measured on each picture, not to be read.
platform::PixelBufferRef straightenedGray(const platform::PixelBuffer& picture,
                                          const Quad& outline);

/// A straightened card turned by half a turn.
platform::PixelBufferRef onItsHead(const platform::PixelBuffer& card);

/// Where a rectangle of the straightened card, or of what lies around it, lies in the picture.
Quad quadInPicture(const platform::CGRect& onCard, const Quad& outline);

/// The smallest upright rectangle of the picture around a rectangle of the straightened card.
platform::CGRect boundsInPicture(const platform::CGRect& onCard, const Quad& outline);

}  // namespace corvana::engine
