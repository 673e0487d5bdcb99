#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "engine/document/outline/CardLook.h"

namespace corvana::engine {

/// A look costs some tenths of a second.
using LookInside = std::function<CardLook(const Quad&)>;

/// Whether an outline's proportions are those of a card or a page, seen at a tilt.
bool hasDocumentsShape(const Quad& outline);

/// Looks inside outlines, the likeliest first, until one certainly holds a card, and gives that, or
/// else the one that looks most like a card; absent where none looks like one. Each outline is
/// looked at once at most.
std::optional<CardLook> chooseCard(const std::vector<Quad>& outlines, const LookInside& lookAt);

/// The same card in an outline of a document's shape, if what was seen has none, since what is
/// printed on the card or what it lies on ends it: of those in its place the one most of that shape
/// that is no less surely a card's and has the same print in it.
CardLook inDocumentsShape(CardLook seen, std::vector<Quad> outlines, const LookInside& lookAt);

}  // namespace corvana::engine
