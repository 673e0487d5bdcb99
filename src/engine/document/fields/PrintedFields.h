#pragma once

#include <vector>

#include "corvana/DocumentField.h"
#include "engine/document/fields/CalendarDates.h"
#include "engine/document/fields/FieldLabels.h"
#include "engine/document/kinds/DocumentKind.h"
#include "engine/document/text/TextReader.h"

namespace corvana::engine {

/// The fields that a card's print names: values that stand behind, beside or below a label in the
/// languages of cards or a number as on licences. Values that cannot be one of their field (a
/// birth date without a date) are passed over. What no label names is taken from where the kind of
/// document has it, in pixels of the lines. `record` is what zones or codes say: a value that they
/// have for another field is that one's, they tell which name "Name" stands for, and a value of
/// theirs that no label names is known by them; where nothing tells, it is left out. Pure.
std::vector<corvana::DocumentField> printedFields(
    const std::vector<TextLine>& lines, const FieldLabels& labels, const CalendarDate& today,
    const std::vector<PlacedField>& places = {},
    const std::vector<corvana::DocumentField>& record = {});

}  // namespace corvana::engine
