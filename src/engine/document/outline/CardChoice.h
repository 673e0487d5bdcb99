#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "engine/document/outline/CardLook.h"
#include "engine/document/outline/CardOutlines.h"

namespace corvana::engine {

/// A look costs some tenths of a second.
using LookInside = std::function<CardLook(const Quad&)>;

/// Looks inside outlines, the likeliest first, until one certainly holds a card, and gives that, or
/// else the one that looks most like a card; absent where none looks like one. Wholes are looked at
/// where no seen one is certain, and must then be so, or look far more like a card. Each outline is
/// looked at once at most.
std::optional<CardLook> chooseCard(const CardOutlines& outlines, const LookInside& lookAt);

/// The same card in an outline of a document's shape, if what was seen has none, since what is
/// printed on the card or what it lies on ends it: of those in its place the one most of that shape
/// that is no less surely a card's and has the same print in it.
CardLook inDocumentsShape(CardLook seen, std::vector<Quad> outlines, const LookInside& lookAt);

/// The clearer of two looks at a card, of which the second is from nearer: it must have all that
/// the first has, and be as sure or have much more print; then a document's shape decides, or
/// print.
CardLook clearer(CardLook seen, CardLook closer);

}  // namespace corvana::engine
