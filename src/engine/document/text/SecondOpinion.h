#pragma once

#include <vector>

#include "engine/document/text/TextReader.h"

namespace corvana::engine {

/// The lines with those that hold a doubtful letter read again by another reader, which may know
/// letters that the first does not. Its text is taken where it differs from the first's in accents
/// or a few letters only, and for what the first hardly read, or (of the `places` of print) not at
/// all, if it is as large as values are.
std::vector<TextLine> withSecondOpinion(const platform::PixelBuffer& card,
                                        std::vector<TextLine> lines,
                                        const std::vector<TextLine>& places, TextReader& second);

}  // namespace corvana::engine
