#pragma once

#include <vector>

#include "corvana/DocumentField.h"
#include "engine/document/fields/FieldLabels.h"
#include "engine/document/fields/ValueReader.h"
#include "engine/document/text/TextReader.h"

/// What zone or code tell of values in print whose labels do not tell, or tell wrongly since a
/// neighbour's label was not read. What they told is marked as known by them. Pure.
namespace corvana::engine {

/// Adds a name under a label that may be the surname's or the given names', if the record has it
/// for one of the two alone.
void addEitherName(corvana::DocumentField name, const std::vector<corvana::DocumentField>& record,
                   std::vector<corvana::DocumentField>& fields);

/// Gives each value that the record has for another field of its sort to that field, in place of
/// what that one had, unless it agrees with the record.
void settle(std::vector<corvana::DocumentField>& fields,
            const std::vector<corvana::DocumentField>& record);

/// Adds names, numbers and dates of the record that stand in print without a label that could be
/// read: alone in a line, or at its end. Nothing that the fields have already is changed.
void addUnlabelled(const std::vector<TextLine>& lines, const ValueReader& read,
                   const std::vector<corvana::DocumentField>& record,
                   std::vector<corvana::DocumentField>& fields);

/// Adds the surname that the record has otherwise, under a label that could not be read: the words
/// next above the given names that the record has too, of the same print. Every document has the
/// surname before the given names. Nothing is added where two such values stand above each other.
void addSurnameAbove(const std::vector<TextLine>& lines, const FieldLabels& labels,
                     const ValueReader& read, const std::vector<corvana::DocumentField>& record,
                     std::vector<corvana::DocumentField>& fields);

}  // namespace corvana::engine
