#pragma once

#include <vector>

#include "engine/document/outline/Quad.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/PixelBuffer.h"

/// Paints over all of a picture but what is named.
namespace corvana::engine {

/// What of a picture is shown, in its pixels.
struct ShownParts {
  /// Faces of the live person, from the brows to the chin: shown is the head that all of them
  /// share. None: nothing is.
  std::vector<platform::CGRect> faces;
  std::vector<Quad> covered;  ///< even in front of the head, with some margin
  std::vector<Quad> cards;    ///< likewise, and in grey where the rest is black
};

/// The upright rectangle around the ellipse that is shown of a head.
platform::CGRect headAround(const platform::CGRect& face);

/// The picture (rgb24 or i420) in its own format with black, and grey where a card was, over all
/// that is not shown. No bit of what lay there stays.
platform::PixelBufferRef coveredBut(const platform::PixelBuffer& picture, const ShownParts& shown);

}  // namespace corvana::engine
