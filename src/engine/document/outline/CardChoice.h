#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "engine/document/outline/CardLook.h"

namespace corvana::engine {

/// Looks inside outlines, the likeliest first, until one certainly holds a card, and gives that, or
/// else the one that looks most like a card; absent where none looks like one. Each outline is
/// looked at once at most, since a look costs some tenths of a second.
std::optional<CardLook> chooseCard(const std::vector<Quad>& outlines,
                                   const std::function<CardLook(const Quad&)>& lookAt);

}  // namespace corvana::engine
