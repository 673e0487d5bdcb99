#pragma once

#include <vector>

#include "corvana/DocumentField.h"
#include "engine/document/fields/FieldLabels.h"
#include "engine/document/fields/ValueReader.h"
#include "engine/document/kinds/DocumentKind.h"
#include "engine/document/text/TextReader.h"

namespace corvana::engine {

/// The fields that a kind of document has in known places, here in pixels of the lines. What stands
/// in a place and cannot be its field's value, or is a label, is passed over. Pure.
std::vector<corvana::DocumentField> placedFields(const std::vector<TextLine>& lines,
                                                 const std::vector<PlacedField>& places,
                                                 const FieldLabels& labels,
                                                 const ValueReader& read);

}  // namespace corvana::engine
