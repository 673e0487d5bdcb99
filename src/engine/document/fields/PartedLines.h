#pragma once

#include <vector>

#include "engine/document/fields/FieldLabels.h"
#include "engine/document/fields/ValueReader.h"
#include "engine/document/text/TextReader.h"

namespace corvana::engine {

/// Parts what a reader took for one line although it is several: labels that stand so near each
/// other that no gap tells them, a label behind another's value, and the values below such labels.
/// Left out is print that reaches below two labels and begins at the first alone: it can't be told
/// whose value it is. Lines whose words the reader could not place stay whole. Pure.
std::vector<TextLine> partedLines(const std::vector<TextLine>& lines, const FieldLabels& labels,
                                  const ValueReader& read);

}  // namespace corvana::engine
