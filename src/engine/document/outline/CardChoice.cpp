#include "engine/document/outline/CardChoice.h"

#include <cstddef>

namespace corvana::engine {
namespace {

/// What was seen inside the outlines so far.
class Looks {
 public:
  Looks(const std::vector<Quad>& outlines, const std::function<CardLook(const Quad&)>& lookAt)
      : outlines_(outlines), lookAt_(lookAt), looks_(outlines.size()) {}

  std::size_t count() const { return outlines_.size(); }
  const Quad& outline(std::size_t i) const { return outlines_[i]; }
  const CardLook& at(std::size_t i) {
    if (!looks_[i]) looks_[i] = lookAt_(outlines_[i]);
    return *looks_[i];
  }

 private:
  const std::vector<Quad>& outlines_;
  const std::function<CardLook(const Quad&)>& lookAt_;
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

}  // namespace

std::optional<CardLook> chooseCard(const std::vector<Quad>& outlines,
                                   const std::function<CardLook(const Quad&)>& lookAt) {
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

}  // namespace corvana::engine
