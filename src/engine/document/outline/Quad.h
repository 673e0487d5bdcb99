#pragma once

#include <array>

#include "platform/geometry/Geometry.h"

namespace corvana::engine {

/// An ID-1 card: 85.60 × 53.98 mm (ISO/IEC 7810).
inline constexpr double kCardAspect = 85.60 / 53.98;
/// A passport's page (ID-3): 125 × 88 mm; ID-2, 105 × 74 mm, has the same proportions.
inline constexpr double kPageAspect = 125.0 / 88.0;

/// A card's outline in a picture, in pixels: its corners from the top left clockwise, where the
/// straight sides would meet (the card's own corners are rounded).
struct Quad {
  std::array<platform::CGPoint, 4> corners;

  platform::CGPoint center() const;
  double topLength() const;
  double bottomLength() const;
  double leftLength() const;
  double rightLength() const;
  double width() const { return (topLength() + bottomLength()) / 2; }
  double height() const { return (leftLength() + rightLength()) / 2; }
  /// Degrees clockwise by which the card is turned.
  double roll() const;
  /// The smallest upright rectangle around it.
  platform::CGRect bounds() const;
  bool isConvex() const;
  /// Whether a point lies inside, or on a side.
  bool contains(const platform::CGPoint& point) const;
  /// By how many times the longer of two opposite sides exceeds the other, at most.
  double taper() const;
  double aspect() const { return width() / height(); }
  /// The proportions of documents, a card's or a page's, that it is nearer to.
  double documentAspect() const;
  /// How far its proportions are from these: of their ratio's logarithm, without sign.
  double aspectErrorFrom(double aspect) const;
  /// How far they are from those of the documents that it is nearest to.
  double aspectError() const { return aspectErrorFrom(documentAspect()); }
  /// Whether its proportions are those of a card or a page, seen at a tilt.
  bool hasDocumentsShape() const;
};

/// How far the corners of two outlines are apart at most, in the width of the first; the second may
/// lie either way up.
double apart(const Quad& a, const Quad& b);

/// The outline moved by so many pixels: from a part of a picture to where it lies in the whole.
Quad shifted(Quad quad, const platform::CGPoint& by);

/// The same outline with the card in it turned by 180°.
Quad upsideDown(const Quad& quad);

}  // namespace corvana::engine
