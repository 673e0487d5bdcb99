#include "engine/document/fields/DocumentFields.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "engine/document/BarcodeReader.h"
#include "engine/document/fields/Aamva.h"
#include "engine/document/fields/PrintedFields.h"

namespace corvana::engine {
namespace {

using corvana::DocumentField;
using corvana::FieldAgreement;
using corvana::FieldName;
using corvana::FieldSource;

constexpr float kChecked = 1.0F;
constexpr float kUnchecked = 0.9F;

constexpr std::array<std::pair<FieldName, const char*>, 10> kNames{
    {{FieldName::surname, "surname"},
     {FieldName::givenNames, "givenNames"},
     {FieldName::documentNumber, "documentNumber"},
     {FieldName::birthDate, "birthDate"},
     {FieldName::issueDate, "issueDate"},
     {FieldName::expiryDate, "expiryDate"},
     {FieldName::sex, "sex"},
     {FieldName::nationality, "nationality"},
     {FieldName::authority, "authority"},
     {FieldName::address, "address"}}};

constexpr std::array<std::pair<FieldSource, const char*>, 3> kSources{
    {{FieldSource::zone, "zone"}, {FieldSource::code, "code"}, {FieldSource::print, "print"}}};

constexpr std::array<std::pair<FieldAgreement, const char*>, 3> kAgreements{
    {{FieldAgreement::agrees, "agrees"},
     {FieldAgreement::conflicts, "conflicts"},
     {FieldAgreement::unread, "unread"}}};

template <class Table, class Value>
const char* nameIn(const Table& table, Value value) {
  return std::ranges::find(table, value, &Table::value_type::first)->second;
}

template <class Table>
auto valueNamed(const Table& table, const std::string& name) {
  const auto entry = std::ranges::find_if(table, [&](const auto& e) { return name == e.second; });
  return entry == table.end() ? std::nullopt : std::optional(entry->first);
}

/// A zone's names reach to its end only where they had to be cut.
bool areNamesCut(const corvana::MRZResult& zone) {
  const std::string& line = zone.lines.size() == 3 ? zone.lines.back() : zone.lines.front();
  return !line.empty() && line.back() != '<';
}

}  // namespace

std::vector<DocumentField> zoneFields(const corvana::MRZResult& zone, const CalendarDate& today) {
  std::vector<DocumentField> fields;
  const auto add = [&](FieldName name, const std::string& value, float confidence) {
    if (!value.empty()) fields.push_back({name, value, FieldSource::zone, confidence, false, {}});
  };
  add(FieldName::surname, zone.surname, kUnchecked);
  add(FieldName::givenNames, zone.givenNames, kUnchecked);
  if (!fields.empty()) fields.back().isTruncated = areNamesCut(zone);
  add(FieldName::documentNumber, zone.documentNumber, kChecked);
  add(FieldName::birthDate, isoBirthDate(zone.birthDate, today).value_or(""), kChecked);
  add(FieldName::expiryDate, isoExpiryDate(zone.expiryDate, today).value_or(""), kChecked);
  add(FieldName::sex, zone.sex == "<" ? "X" : zone.sex, kUnchecked);
  add(FieldName::nationality, zone.nationality, kUnchecked);
  add(FieldName::authority, zone.issuingState, kUnchecked);
  return fields;
}

std::vector<DocumentField> recordOf(const corvana::DetectedData& side) {
  std::vector<DocumentField> record = side.fields.value_or(std::vector<DocumentField>());
  std::erase_if(record,
                [](const DocumentField& field) { return field.source == FieldSource::print; });
  return record;
}

std::vector<DocumentField> documentFields(const corvana::DetectedData& side,
                                          const std::vector<TextLine>& print,
                                          const FieldLabels& labels, const CalendarDate& today,
                                          const std::vector<PlacedField>& places,
                                          const std::vector<DocumentField>& otherRecord) {
  std::vector<DocumentField> fields;
  const auto add = [&](const std::vector<DocumentField>& more) {
    fields.insert(fields.end(), more.begin(), more.end());
  };
  if (side.mrz) add(zoneFields(*side.mrz, today));
  if (side.barcode && side.barcode->contains(kBarcodeText)) {
    if (const auto record = parseAamva(side.barcode->at(kBarcodeText))) add(aamvaFields(*record));
  }
  std::vector<DocumentField> record = fields;
  record.insert(record.end(), otherRecord.begin(), otherRecord.end());
  add(printedFields(print, labels, today, places, record));
  return fields;
}

const char* nameOf(FieldName name) {
  return nameIn(kNames, name);
}
const char* nameOf(FieldSource source) {
  return nameIn(kSources, source);
}
const char* nameOf(FieldAgreement agreement) {
  return nameIn(kAgreements, agreement);
}
std::optional<FieldName> fieldNamed(const std::string& name) {
  return valueNamed(kNames, name);
}
std::optional<FieldSource> fieldSourceNamed(const std::string& name) {
  return valueNamed(kSources, name);
}

}  // namespace corvana::engine
