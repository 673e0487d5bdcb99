#pragma once

#include "corvana/IDCapture.h"
#include "engine/document/outline/Quad.h"
#include "platform/geometry/Geometry.h"

namespace corvana::engine {

enum class CardVerdict {
  none,            ///< no card is seen
  found,           ///< a card is where it should be
  moveCloser,      ///< a card is too small to be read
  moveAway,        ///< a card is so near that the picture has no room for it
  alignRectangle,  ///< a card is partly outside the picture, beside the guide or strongly tilted
};

/// Judges the place of a card that is seen whole; the guide is where it should be held.
CardVerdict cardPlace(const Quad& outline, const platform::CGSize& picture,
                      const platform::CGRect& guide, const corvana::IDCapture::Options& limits);

/// Over which edges of the picture a card reaches. Nobody sees a card's upper edge go: the face is
/// above it.
struct CutEdges {
  bool left = false;
  bool right = false;
  bool bottom = false;
  int count() const { return int{left} + int{right} + int{bottom}; }
};

/// Judges a card of which only a part is seen, cut by the picture's edges; none when neither a card
/// nor a page can show such a part.
CardVerdict cutCardPlace(const Quad& part, const CutEdges& cut, const platform::CGRect& guide,
                         const corvana::IDCapture::Options& limits);

}  // namespace corvana::engine
