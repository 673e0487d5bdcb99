#pragma once

#include <vector>

#include "engine/document/Quad.h"
#include "engine/document/text/TextBoxes.h"
#include "platform/foundation/Fault.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// The places where a card may lie in a still, in pixels of `picture`: the still, made smaller
/// where it has more pixels than a reading needs.
struct StillCards {
  platform::PixelBufferRef picture;
  std::vector<Quad> outlines;  ///< the likeliest first, at any turn; at least one
};

/// What to say of a picture without a card.
platform::Fault noCardSeen();

/// Finds where the card may lie in a photo or scan: outlines of its shape, or the whole picture
/// where that has a card's shape. Error: there is neither, or all are less than 320 pixels wide.
platform::Expected<StillCards> cardsInStill(const platform::PixelBufferRef& picture,
                                            TextBoxes& print);

}  // namespace corvana::engine
