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

/// Puts the record's name where it stands alone in a line into the place of what was taken for this
/// name and is another, in smaller print or below both names: a misread label's part, or what
/// stands under one. What is printed otherwise in its place, in print as large, stays.
void leaveLabelsOut(const std::vector<TextLine>& lines, const ValueReader& read,
                    const std::vector<corvana::DocumentField>& record,
                    std::vector<corvana::DocumentField>& fields);

/// Puts the record's letters into names that are its own but for letters with marks, which readers
/// take for others (Č for Ǧ): what the print has there was not read.
void correctMarkedLetters(const std::vector<corvana::DocumentField>& record,
                          std::vector<corvana::DocumentField>& fields);

/// Adds the date of issue under a label that could not be read, in whatever line: the only date on
/// the day of the year on which the record's expiry lets documents have been issued.
void addIssueDate(const std::vector<TextLine>& lines,
                  const std::vector<corvana::DocumentField>& record,
                  std::vector<corvana::DocumentField>& fields);

/// Adds the surname that the record has otherwise, under a label that could not be read: the words
/// next above the given names that the record has too, of the same print. Every document has the
/// surname before the given names. Nothing is added where two such values stand above each other.
void addSurnameAbove(const std::vector<TextLine>& lines, const FieldLabels& labels,
                     const ValueReader& read, const std::vector<corvana::DocumentField>& record,
                     std::vector<corvana::DocumentField>& fields);

}  // namespace corvana::engine
