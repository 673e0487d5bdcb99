#pragma once

#include <cstddef>
#include <vector>

#include "engine/document/text/TextReader.h"
#include "platform/geometry/Geometry.h"

namespace corvana::engine {

/// A page's zone often stands on a band of another colour, and an outline may end at that band, or
/// within it. Tells from lines of print around the straightened card, which lies upright, where the
/// document ends that has them. Pure.
class ZoneBelow {
 public:
  /// Zones beside a photo have two lines.
  static constexpr std::size_t kFewestLines = 2;

  /// Where to look, in pixels of a straightened card of that height: of its shape, and half as
  /// large again.
  static platform::CGRect around(int height);

  /// The heights of the straightened card and of the straightened picture of what lies around it,
  /// whose lines are given below.
  ZoneBelow(int height, int seenHeight) : height_(height), seenHeight_(seenHeight) {}

  /// Whether a line stands where a zone does that was left out.
  bool mayBeOfZone(const TextLine& line) const;
  /// The document with the zone's lines, in pixels of the straightened card.
  platform::CGRect document(const std::vector<TextLine>& zone) const;

 private:
  platform::CGRect onCard(const platform::CGRect& box) const;

  int height_;
  int seenHeight_;
};

}  // namespace corvana::engine
