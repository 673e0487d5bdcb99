#pragma once

#include <cstddef>
#include <vector>

#include "engine/redaction/Cover.h"
#include "engine/redaction/HeadFinder.h"

namespace corvana::engine {

/// What of one picture of a film is shown, by what was seen in it and shortly before and after it:
/// no head that is not seen in all of them or that another face came near, and nothing where any
/// close look among them found print or a card. Sightings are those of all pictures, in their
/// order.
ShownParts shownPartsAt(const std::vector<HeadSighting>& sightings, std::size_t index);

}  // namespace corvana::engine
