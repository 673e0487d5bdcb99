#pragma once

#include <vector>

#include "engine/document/TextReader.h"
#include "engine/document/mrz/MrzReader.h"

namespace corvana::engine {

/// The machine-readable zone among the lines of print of a card, whatever its format. Pure.
MrzReading mrzInPrint(const std::vector<TextLine>& print);

}  // namespace corvana::engine
