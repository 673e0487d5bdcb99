#include "engine/document/outline/CardPlace.h"

#include <algorithm>
#include <cmath>

namespace corvana::engine {
namespace {

/// Of the picture's width: outlines are not known any better.
constexpr double kEdgeMargin = 0.012;
/// What a cut takes of a card at least and at most, so that the rest can be told for one.
constexpr double kLeastHidden = 1.05;
constexpr double kMostHidden = 2.5;

CutEdges touchedEdges(const Quad& outline, const platform::CGSize& picture) {
  const double margin = kEdgeMargin * picture.width;
  const auto box = outline.bounds();
  return {box.minX() < margin, box.maxX() > picture.width - margin,
          box.minY() < margin || box.maxY() > picture.height - margin};
}

/// Whether a card or a page that is cut at its bottom or at one side can have such a rest.
bool mayBePart(double aspect, const CutEdges& cut) {
  return cut.bottom ? aspect >= kLeastHidden * kPageAspect && aspect <= kMostHidden * kCardAspect
                    : aspect >= kPageAspect / kMostHidden && aspect <= kCardAspect / kLeastHidden;
}

}  // namespace

CardVerdict cardPlace(const Quad& outline, const platform::CGSize& picture,
                      const platform::CGRect& guide, const corvana::IDCapture::Options& limits) {
  const CutEdges touched = touchedEdges(outline, picture);
  const bool isTooNear = outline.width() > limits.mostCardWidth * guide.width;
  if (isTooNear || (touched.left && touched.right)) return CardVerdict::moveAway;
  if (touched.count() > 0) return CardVerdict::alignRectangle;
  if (outline.width() < limits.leastCardWidth * guide.width) return CardVerdict::moveCloser;
  const auto center = outline.center();
  const double offset =
      std::max(std::abs(center.x - guide.midX()), std::abs(center.y - guide.midY()));
  const bool isTilted =
      std::abs(outline.roll()) > limits.mostCardRoll || outline.taper() > limits.mostCardTaper;
  if (isTilted || offset > limits.mostCardOffset * guide.width) return CardVerdict::alignRectangle;
  return CardVerdict::found;
}

CardVerdict cutCardPlace(const Quad& part, const CutEdges& cut, const platform::CGRect& guide,
                         const corvana::IDCapture::Options& limits) {
  const double byHeight = part.height() * kCardAspect;  // a card's width, if its height is whole
  if (cut.left && cut.right) {
    const bool hasHeight = cut.bottom || byHeight > kLeastHidden * part.width();
    return hasHeight ? CardVerdict::moveAway : CardVerdict::none;
  }
  const bool isCorner = cut.bottom && (cut.left || cut.right);
  if (!isCorner && !mayBePart(part.aspect(), cut)) return CardVerdict::none;
  const double leastWidth = std::max(part.width(), byHeight);
  if (leastWidth > limits.mostCardWidth * guide.width) return CardVerdict::moveAway;
  return CardVerdict::alignRectangle;
}

}  // namespace corvana::engine
