#include "engine/document/outline/CardChoice.h"

#include <algorithm>
#include <cstddef>

namespace corvana::engine {
namespace {

/// Whether a look shows all that another one does.
bool holdsAllOf(const CardLook& look, const CardLook& other) {
  constexpr double kAsMuchPrint = 0.9;  // it is not found alike in each straightened picture
  return look.printLength() >= kAsMuchPrint * other.printLength() &&
         (look.mayHaveFace() || !other.hasSureFace());
}

/// What was seen inside the outlines so far.
class Looks {
 public:
  Looks(const std::vector<Quad>& outlines, const LookInside& lookAt)
      : outlines_(outlines), lookAt_(lookAt), looks_(outlines.size()) {}

  std::size_t count() const { return outlines_.size(); }
  const Quad& outline(std::size_t i) const { return outlines_[i]; }
  const CardLook& at(std::size_t i) {
    if (!looks_[i]) looks_[i] = lookAt_(outlines_[i]);
    return *looks_[i];
  }

 private:
  const std::vector<Quad>& outlines_;
  const LookInside& lookAt_;
  std::vector<std::optional<CardLook>> looks_;
};

/// The card of which the outline may hold a part only.
std::size_t wholeCard(Looks& looks, std::size_t part) {
  std::size_t whole = part;
  for (std::size_t i = 0; i < looks.count(); ++i) {
    if (!completes(looks.outline(i), looks.outline(whole))) continue;
    const CardLook& larger = looks.at(i);
    if (larger.isCertainlyACard() && larger.content() >= looks.at(whole).content()) whole = i;
  }
  return whole;
}

std::optional<CardLook> likestACard(const std::vector<Quad>& outlines, const LookInside& lookAt) {
  Looks looks(outlines, lookAt);
  std::optional<std::size_t> best;
  for (std::size_t i = 0; i < looks.count(); ++i) {
    const CardLook& look = looks.at(i);
    if (look.isCertainlyACard()) return looks.at(wholeCard(looks, i));
    if (look.content() > (best ? looks.at(*best).content() : 0)) best = i;
  }
  if (!best) return std::nullopt;
  return looks.at(*best);
}

bool isOfSamePlace(const Quad& a, const Quad& b) {
  return a.contains(b.center()) && b.contains(a.center());
}

}  // namespace

std::optional<CardLook> chooseCard(const CardOutlines& outlines, const LookInside& lookAt) {
  constexpr double kFarMore = 1.5;
  auto seen = likestACard(outlines.seen, lookAt);
  if (seen && seen->isCertainlyACard()) return seen;
  auto whole = likestACard(outlines.wholes, lookAt);
  const bool isWhole = whole && (!seen || whole->isCertainlyACard() ||
                                 whole->content() > kFarMore * seen->content());
  return isWhole ? whole : seen;
}

CardLook inDocumentsShape(CardLook seen, std::vector<Quad> outlines, const LookInside& lookAt) {
  if (seen.outline.hasDocumentsShape()) return seen;
  std::erase_if(outlines, [&](const Quad& outline) {
    return !outline.hasDocumentsShape() || !isOfSamePlace(outline, seen.outline);
  });
  std::ranges::stable_sort(outlines, {}, &Quad::aspectError);
  for (const Quad& outline : outlines) {
    CardLook look = lookAt(outline);
    const bool isAsSure = look.isCertainlyACard() || !seen.isCertainlyACard();
    if (isAsSure && holdsAllOf(look, seen)) return look;
  }
  return seen;
}

CardLook clearer(CardLook seen, CardLook closer) {
  constexpr double kMore = 1.05;  // print is not found alike in each straightened picture
  constexpr double kMuchMore = 1.15;
  const auto hasMoreBy = [&](double factor) {
    return closer.fittingPrint() > factor * seen.fittingPrint();
  };
  if (!holdsAllOf(closer, seen)) return seen;
  if (seen.isCertainlyACard() && !closer.isCertainlyACard()) {
    if (seen.barcode || !hasMoreBy(kMuchMore)) return seen;
  }
  const bool isShaped = closer.outline.hasDocumentsShape();
  if (isShaped != seen.outline.hasDocumentsShape()) return isShaped ? closer : seen;
  return hasMoreBy(kMore) ? closer : seen;
}

}  // namespace corvana::engine
