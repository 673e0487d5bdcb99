#include "engine/document/fields/SettledFields.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <map>
#include <optional>
#include <utility>

#include "engine/document/fields/Transliteration.h"
#include "engine/document/fields/ValueAgreement.h"
#include "engine/document/mrz/MrzLayout.h"

namespace corvana::engine {
namespace {

using corvana::DocumentField;
using corvana::FieldName;
using Fields = std::vector<DocumentField>;

/// Fields whose values look alike, so that a label may be given its neighbour's.
bool areAlike(FieldName a, FieldName b) {
  return (isName(a) && isName(b)) || (isDate(a) && isDate(b));
}

/// What the record has of this name and with this value; null where it has none.
const DocumentField* entryOf(const Fields& record, FieldName name, const std::string& value) {
  const auto entry = std::ranges::find_if(record, [&](const DocumentField& field) {
    return field.name == name && agreementOf(value, field) == corvana::FieldAgreement::agrees;
  });
  return entry == record.end() ? nullptr : &*entry;
}

/// The one other field for which the record has a value that it has not for this one.
const DocumentField* otherEntry(const DocumentField& field, const Fields& record) {
  if (entryOf(record, field.name, field.value)) return nullptr;
  const auto other = std::ranges::find_if(record, [&](const DocumentField& recorded) {
    return recorded.name != field.name && areAlike(recorded.name, field.name) &&
           entryOf(record, recorded.name, field.value);
  });
  return other == record.end() ? nullptr : &*other;
}

bool isPrinted(const Fields& fields, FieldName name) {
  return std::ranges::find(fields, name, &DocumentField::name) != fields.end();
}

/// Whether a printed value is the record's whole one: without a label a part of it may be anything.
bool isWhole(const std::string& printed, const DocumentField& recorded) {
  if (isDate(recorded.name)) return printed == recorded.value;
  if (!isName(recorded.name)) {
    return agreementOf(printed, recorded) == corvana::FieldAgreement::agrees;
  }
  const std::string letters = letterSkeleton(printed);
  const std::string wanted = letterSkeleton(recorded.value);
  return letters == wanted || isLikeWhereMarked(printed, recorded.value) ||
         (recorded.isTruncated && !wanted.empty() && letters.starts_with(wanted));
}

enum class Reach { wholeLine, lineEnd };

/// The record's value in a line: all of it, or what it ends with behind a label that is not known.
/// A short value may end a line by chance.
std::optional<std::string> valueIn(const std::string& line, const DocumentField& recorded,
                                   const ValueReader& read, Reach reach) {
  constexpr std::size_t kLeastLettersAtEnd = 4;
  const bool mayEndIt = reach == Reach::lineEnd && recorded.value.size() >= kLeastLettersAtEnd;
  for (std::size_t at = 0; at != std::string::npos; at = line.find(' ', at)) {
    at = line.find_first_not_of(' ', at);
    if (at == std::string::npos || (at > 0 && !mayEndIt)) break;
    auto value = read(recorded.name, line.substr(at));
    if (value && isWhole(*value, recorded)) return value;
  }
  return std::nullopt;
}

/// A line that is another field's is not this one's too.
bool isTaken(const TextLine& line, const Fields& fields) {
  return std::ranges::any_of(fields,
                             [&](const DocumentField& field) { return field.place == line.box; });
}

/// The record's value as the print has it.
std::optional<DocumentField> inPrint(const DocumentField& recorded,
                                     const std::vector<TextLine>& lines, const ValueReader& read,
                                     const Fields& fields, Reach reach) {
  for (const TextLine& line : lines) {
    if (isZoneLine(line.text) || isTaken(line, fields)) continue;
    if (auto value = valueIn(line.text, recorded, read, reach)) {
      return DocumentField{recorded.name,
                           *std::move(value),
                           corvana::FieldSource::print,
                           static_cast<float>(line.confidence),
                           false,
                           line.box,
                           recorded.source};
    }
  }
  return std::nullopt;
}

bool hasSmallLetters(const std::string& text) {
  return std::ranges::any_of(text, [](char c) { return c >= 'a' && c <= 'z'; });
}

/// Values of one column are of one print and begin at one edge; labels between them are smaller.
bool areInOneColumn(const platform::CGRect& a, const platform::CGRect& b) {
  constexpr double kSameHeight = 0.7;  // marks make a line higher
  constexpr double kSameEdge = 0.5;    // of the height
  const auto [low, high] = std::minmax(a.height, b.height);
  return low > kSameHeight * high && std::abs(a.minX() - b.minX()) < kSameEdge * high;
}

/// Whether no other value can stand between two of one column.
bool isNextAbove(const platform::CGRect& above, const platform::CGRect& value) {
  constexpr double kMostAbove = 2.0;   // of the height, with a label between
  constexpr double kMostShared = 0.5;  // of the height
  const double gap = value.minY() - above.maxY();
  return gap > -kMostShared * value.height && gap < kMostAbove * value.height &&
         areInOneColumn(above, value);
}

/// The words that stand next above a value, in its column; null where none do.
const TextLine* wordsAbove(const TextLine& value, const std::vector<const TextLine*>& words) {
  const TextLine* next = nullptr;
  for (const TextLine* line : words) {
    const bool isAbove = line != &value && isNextAbove(line->box, value.box) &&
                         hasSmallLetters(line->text) == hasSmallLetters(value.text);
    if (!isAbove) continue;
    if (!next || line->box.maxY() > next->box.maxY()) next = line;
  }
  return next;
}

/// Whether print is a label's beside a value: altered values have the print of values.
bool isSmallBeside(const DocumentField& field, const DocumentField& value) {
  constexpr double kMostOfValue = 0.8;
  return field.place && value.place && field.place->height < kMostOfValue * value.place->height;
}

/// Whether a name stands with the holder's other one as on every document, and what was taken for
/// it stands below both, under a label of something else. An altered name stands in its own place.
bool standsWithOtherName(const DocumentField& name, const DocumentField& taken,
                         const Fields& fields) {
  const bool isSurname = name.name == FieldName::surname;
  const auto other = std::ranges::find(
      fields, isSurname ? FieldName::givenNames : FieldName::surname, &DocumentField::name);
  if (other == fields.end() || !other->place || !name.place || !taken.place) return false;
  const auto& [upper, lower] =
      isSurname ? std::pair(*name.place, *other->place) : std::pair(*other->place, *name.place);
  return isNextAbove(upper, lower) && taken.place->minY() > lower.midY();
}

/// Documents expire on the day of the year on which they were issued, or on the day before.
bool mayBeIssueOf(const CalendarDate& expiry, const CalendarDate& date) {
  constexpr std::chrono::years kLongestValidity{15};
  const CalendarDate dayAfter(std::chrono::sys_days(expiry) + std::chrono::days(1));
  return std::ranges::any_of(std::array{expiry, dayAfter}, [&](const CalendarDate& day) {
    return date.month() == day.month() && date.day() == day.day() && date.year() < day.year() &&
           day.year() - date.year() <= kLongestValidity;
  });
}

/// Lines that no label begins and that may be a name as a whole.
std::vector<const TextLine*> unlabelledWords(const std::vector<TextLine>& lines,
                                             const FieldLabels& labels, const ValueReader& read) {
  std::vector<const TextLine*> words;
  for (const TextLine& line : lines) {
    const bool mayBeName = !isZoneLine(line.text) && read(FieldName::surname, line.text) &&
                           !labels.labelledText(line.text);
    if (mayBeName) words.push_back(&line);
  }
  return words;
}

}  // namespace

void addEitherName(DocumentField name, const Fields& record, Fields& fields) {
  const auto* surname = entryOf(record, FieldName::surname, name.value);
  const auto* givenNames = entryOf(record, FieldName::givenNames, name.value);
  if ((surname == nullptr) == (givenNames == nullptr)) return;
  const DocumentField& entry = surname ? *surname : *givenNames;
  name.name = entry.name;
  name.knownBy = entry.source;
  fields.push_back(std::move(name));
}

void settle(Fields& fields, const Fields& record) {
  Fields moved;
  for (auto field = fields.begin(); field != fields.end();) {
    const auto* entry = otherEntry(*field, record);
    if (!entry) {
      ++field;
      continue;
    }
    field->name = entry->name;
    field->knownBy = entry->source;
    moved.push_back(std::move(*field));
    field = fields.erase(field);
  }
  for (DocumentField& field : moved) {
    const auto own = std::ranges::find(fields, field.name, &DocumentField::name);
    if (own == fields.end()) {
      fields.push_back(std::move(field));
    } else if (!entryOf(record, own->name, own->value)) {
      *own = std::move(field);
    }
  }
}

void addSurnameAbove(const std::vector<TextLine>& lines, const FieldLabels& labels,
                     const ValueReader& read, const Fields& record, Fields& fields) {
  if (isPrinted(fields, FieldName::surname) || !isPrinted(record, FieldName::surname)) return;
  const auto given = std::ranges::find(fields, FieldName::givenNames, &DocumentField::name);
  if (given == fields.end() || !entryOf(record, given->name, given->value)) return;
  const auto words = unlabelledWords(lines, labels, read);
  const auto isGiven = [&](const TextLine* line) {
    return line->box == given->place && line->text == given->value;
  };
  const auto givenLine = std::ranges::find_if(words, isGiven);
  const auto* surname = givenLine == words.end() ? nullptr : wordsAbove(**givenLine, words);
  // Of two values above the given names either may be the surname, or a part of it.
  if (!surname || isTaken(*surname, fields) || wordsAbove(*surname, words)) return;
  fields.push_back({FieldName::surname, surname->text, corvana::FieldSource::print,
                    static_cast<float>(surname->confidence), false, surname->box});
}

void leaveLabelsOut(const std::vector<TextLine>& lines, const ValueReader& read,
                    const Fields& record, Fields& fields) {
  for (DocumentField& field : fields) {
    if (!isName(field.name) || entryOf(record, field.name, field.value)) continue;
    const auto recorded = std::ranges::find(record, field.name, &DocumentField::name);
    if (recorded == record.end()) continue;
    auto value = inPrint(*recorded, lines, read, fields, Reach::wholeLine);
    const bool isOther =
        value && (isSmallBeside(field, *value) || standsWithOtherName(*value, field, fields));
    if (isOther) field = *std::move(value);
  }
}

void correctMarkedLetters(const Fields& record, Fields& fields) {
  for (DocumentField& field : fields) {
    const auto alike = std::ranges::find_if(record, [&](const DocumentField& recorded) {
      return isName(field.name) && recorded.name == field.name &&
             isLikeWhereMarked(field.value, recorded.value);
    });
    if (alike == record.end()) continue;
    std::string corrected = withMarkedLettersAs(field.value, letterSkeleton(alike->value));
    if (corrected == field.value) continue;
    field.value = std::move(corrected);
    field.knownBy = alike->source;
  }
}

void addIssueDate(const std::vector<TextLine>& lines, const Fields& record, Fields& fields) {
  if (isPrinted(fields, FieldName::issueDate) || isPrinted(record, FieldName::issueDate)) return;
  const auto expiry = std::ranges::find(record, FieldName::expiryDate, &DocumentField::name);
  const auto lastDay = expiry == record.end() ? std::nullopt : calendarDate(expiry->value);
  if (!lastDay) return;
  std::map<std::string, const TextLine*> found;
  for (const TextLine& line : lines) {
    for (std::string& iso : datesEitherWay(line.text, *lastDay)) {
      const auto date = calendarDate(iso);
      const bool isOthers = std::ranges::find(record, iso, &DocumentField::value) != record.end();
      if (date && !isOthers && mayBeIssueOf(*lastDay, *date)) found.emplace(std::move(iso), &line);
    }
  }
  // Of several one may be another expiry, or a category's first day.
  if (found.size() != 1) return;
  const auto& [iso, line] = *found.begin();
  fields.push_back({FieldName::issueDate, iso, corvana::FieldSource::print,
                    static_cast<float>(line->confidence), false, line->box, expiry->source});
}

void addUnlabelled(const std::vector<TextLine>& lines, const ValueReader& read,
                   const Fields& record, Fields& fields) {
  for (const DocumentField& recorded : record) {
    if (!isSearched(recorded.name) || isPrinted(fields, recorded.name)) continue;
    if (auto field = inPrint(recorded, lines, read, fields, Reach::lineEnd))
      fields.push_back(*std::move(field));
  }
}

}  // namespace corvana::engine
