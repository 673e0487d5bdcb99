#pragma once

#include <optional>

#include "engine/document/outline/CardPlace.h"
#include "engine/document/outline/Quad.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

struct CardSighting {
  CardVerdict verdict = CardVerdict::none;
  /// The outline in pixels of the picture; absent without a card, and where it is cut off.
  std::optional<Quad> outline;
  /// Share of the four sides that lies on edges which stand out, 0 to 1.
  double score = 0;
};

/// Looks for the outline of a card or page, held in landscape, near the guide (a rectangle in
/// pixels of the picture, where the user is asked to hold the card). Corners are good to about two
/// pixels of a 720-pixel-wide picture. Pure; about 10 ms for a camera frame.
CardSighting findCard(const platform::PixelBuffer& picture, const platform::CGRect& guide,
                      const corvana::IDCapture::Options& limits = {});

}  // namespace corvana::engine
