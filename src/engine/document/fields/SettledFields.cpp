#include "engine/document/fields/SettledFields.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "engine/document/fields/ValueAgreement.h"

namespace corvana::engine {
namespace {

using corvana::DocumentField;
using corvana::FieldName;
using Fields = std::vector<DocumentField>;

/// Fields whose values look alike, so that a label may be given its neighbour's.
bool areAlike(FieldName a, FieldName b) {
  return (isName(a) && isName(b)) || (isDate(a) && isDate(b));
}

bool hasValue(const Fields& record, FieldName name, const std::string& value) {
  return std::ranges::any_of(record, [&](const DocumentField& field) {
    return field.name == name && agreementOf(value, field) == corvana::FieldAgreement::agrees;
  });
}

/// The one other field for which the record has a value that it has not for this one.
std::optional<FieldName> otherName(const DocumentField& field, const Fields& record) {
  if (hasValue(record, field.name, field.value)) return std::nullopt;
  const auto other = std::ranges::find_if(record, [&](const DocumentField& recorded) {
    return recorded.name != field.name && areAlike(recorded.name, field.name) &&
           hasValue(record, recorded.name, field.value);
  });
  if (other == record.end()) return std::nullopt;
  return other->name;
}

}  // namespace

void addEitherName(DocumentField name, const Fields& record, Fields& fields) {
  const bool isSurname = hasValue(record, FieldName::surname, name.value);
  const bool isGivenNames = hasValue(record, FieldName::givenNames, name.value);
  if (isSurname == isGivenNames) return;
  name.name = isSurname ? FieldName::surname : FieldName::givenNames;
  fields.push_back(std::move(name));
}

void settle(Fields& fields, const Fields& record) {
  Fields moved;
  for (auto field = fields.begin(); field != fields.end();) {
    const auto name = otherName(*field, record);
    if (!name) {
      ++field;
      continue;
    }
    field->name = *name;
    moved.push_back(std::move(*field));
    field = fields.erase(field);
  }
  for (DocumentField& field : moved) {
    const auto own = std::ranges::find(fields, field.name, &DocumentField::name);
    if (own == fields.end()) {
      fields.push_back(std::move(field));
    } else if (!hasValue(record, own->name, own->value)) {
      *own = std::move(field);
    }
  }
}

}  // namespace corvana::engine
