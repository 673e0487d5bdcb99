#pragma once

#include <vector>

#include "engine/document/Quad.h"
#include "platform/foundation/Fault.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// A card's outline in a still, in pixels of `picture`: the still or one of its turns.
struct StillCard {
  platform::PixelBufferRef picture;
  Quad outline;
};

/// Finds where the card may lie in a photo or scan, the likeliest way up first; at least one place.
/// A card is sought as an outline; failing that, a picture of a card's shape is taken for the card
/// itself. Error: there is neither, or the card is less than 320 pixels wide.
platform::Expected<std::vector<StillCard>> cardsInStill(const platform::PixelBuffer& picture);

}  // namespace corvana::engine
