#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "app/card/Reference.h"
#include "engine/document/kinds/DocumentKinds.h"

namespace corvana::app {

/// The sides that a reference has, front first; they live as long as it does.
std::vector<const corvana::DetectedData*> sidesOf(const Reference& reference);

/// Takes a front that no title names for one of the kind that zone or barcode of the back tell, if
/// its print has what tells this document from others of its holder, and nothing conflicts. Whether
/// it was taken for one.
bool takeKindOfBack(Reference& reference, const engine::DocumentKinds& kinds);

/// Why the sides make no reference, as a sentence that names the picture to be taken again; empty
/// when they do. No flow accepts a card whose sides are of two kinds, so that this can't be
/// allowed.
std::string sidesFault(const Reference& reference, const engine::DocumentKinds& kinds,
                       const std::filesystem::path& front, const std::filesystem::path& back);

}  // namespace corvana::app
