#pragma once

#include <vector>

#include "engine/document/mrz/MrzReader.h"
#include "engine/document/mrz/MrzVotes.h"
#include "engine/document/text/TextReader.h"

namespace corvana::engine {

/// The machine-readable zone among the lines of print of a card, whatever its format. Pure.
MrzReading mrzInPrint(const std::vector<TextLine>& print);

/// The lines among the print that may be of a zone, each a vote for what stands there. Pure.
std::vector<MrzPrint> mrzVotesOf(const std::vector<TextLine>& print);

/// Whether the lines look like a zone that was read upside down, whose fillers point backwards.
bool isZoneOnItsHead(const std::vector<TextLine>& lines);

}  // namespace corvana::engine
