#include "engine/document/fields/PrintedFields.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <set>
#include <string>

#include "engine/document/fields/PartedLines.h"
#include "engine/document/fields/PlacedFields.h"
#include "engine/document/fields/SettledFields.h"
#include "engine/document/fields/ValueReader.h"
#include "engine/document/mrz/MrzLayout.h"

namespace corvana::engine {
namespace {

using corvana::DocumentField;
using corvana::FieldName;
using corvana::FieldSource;

/// Lines with numbers that make a licence of a card.
constexpr std::size_t kLeastNumbers = 3;
/// How far below its label a value may stand, in heights of the taller of both.
constexpr double kMostBelow = 2.0;
/// How far to its right, in pixels of the card.
constexpr double kMostBeside = 450;
constexpr double kLeastSharedHeight = 0.5;
/// Print beneath a label is commoner than print beside it at the same distance.
constexpr double kBesideWeight = 1.5;
constexpr std::size_t kMostAddressLines = 3;

struct Line {
  const TextLine* print;
  std::optional<LabelledText> label;
};

bool isNorthAmerican(const std::vector<TextLine>& lines) {
  static const std::set<std::string> kWords{"DOB", "DLN", "HGT", "WGT", "LICENSE"};
  return std::ranges::any_of(lines, [](const TextLine& line) {
    return std::ranges::any_of(plainWords(line.text),
                               [](const std::string& word) { return kWords.contains(word); });
  });
}

bool isLabelOf(const Line& line, FieldName name) {
  return line.label && line.label->hasWords && !line.label->isOfEitherName &&
         line.label->name == name;
}

void decide(LabelledText& label, std::optional<FieldName> name) {
  label.name = name;
  label.isOfEitherName = false;
}

/// "Name" stands for the surname on cards that say "Given names" too, and for the given names on
/// those that say "Surname". Two such labels are one of each, the upper one the surname's. One
/// whose fellow was not read stays undecided.
void tellNamesApart(std::vector<Line>& lines) {
  const auto has = [&](FieldName name) {
    return std::ranges::any_of(lines, [name](const Line& line) { return isLabelOf(line, name); });
  };
  std::vector<Line*> either;
  for (Line& line : lines) {
    if (line.label && line.label->isOfEitherName) either.push_back(&line);
  }
  const bool hasSurname = has(FieldName::surname);
  const bool hasGivenNames = has(FieldName::givenNames);
  if (hasGivenNames) {
    for (Line* line : either)
      decide(*line->label, hasSurname ? std::nullopt : std::optional(FieldName::surname));
  } else if (hasSurname && either.size() == 1) {
    decide(*either.front()->label, FieldName::givenNames);
  } else if (!hasSurname && either.size() == 2) {
    std::ranges::sort(either, {}, [](const Line* line) { return line->print->box.midY(); });
    decide(*either.front()->label, FieldName::surname);
    decide(*either.back()->label, FieldName::givenNames);
  }
}

/// On a licence its number says which name a label stands for.
void tellNamesByNumber(std::vector<Line>& lines) {
  for (Line& line : lines) {
    if (!line.label || !line.label->isOfEitherName) continue;
    if (const auto name = numberedField(line.label->number, false)) decide(*line.label, name);
  }
}

std::vector<Line> labelledLines(const std::vector<TextLine>& lines, const FieldLabels& labels) {
  std::vector<Line> result;
  std::set<std::string> numbers;
  for (const TextLine& line : lines) {
    if (isZoneLine(line.text)) continue;
    result.push_back({&line, labels.labelledText(line.text)});
    const auto& label = result.back().label;
    if (label && !label->number.empty()) numbers.insert(label->number);
  }
  const bool isLicence = numbers.size() >= kLeastNumbers;
  if (isLicence) tellNamesByNumber(result);
  tellNamesApart(result);
  for (Line& line : result) {
    // A house's number is no field's.
    if (!isLicence && line.label && !line.label->hasWords) line.label.reset();
  }
  return result;
}

/// How near a text is to a label as its value; absent where it is none.
std::optional<double> distance(const platform::CGRect& label, const platform::CGRect& text) {
  const double shared = std::min(label.maxY(), text.maxY()) - std::max(label.minY(), text.minY());
  const double gap = text.minX() - label.maxX();
  if (shared > kLeastSharedHeight * std::min(label.height, text.height)) {
    if (gap < -label.height / 2 || gap > kMostBeside) return std::nullopt;
    return kBesideWeight * std::max(0.0, gap);
  }
  const double drop = text.minY() - label.maxY();
  const double height = std::max(label.height, text.height);
  const double indent = std::abs(text.minX() - label.minX());
  const bool isBelow = text.midY() > label.midY() && drop < kMostBelow * height;
  const bool isAligned =
      indent < 2 * height || (text.minX() < label.maxX() && text.maxX() > label.minX());
  if (!isBelow || !isAligned) return std::nullopt;
  return std::max(0.0, drop) + indent;
}

/// A text that may be a label's value.
struct Pair {
  double distance;
  FieldName name;
  bool isOfEitherName;
  const TextLine* text;
  std::string value;
};

/// What the labels name.
struct Named {
  std::vector<DocumentField> fields;
  /// Under a label of which it can't be told for which name it stands.
  std::optional<DocumentField> eitherName;
};

class Assembly {
 public:
  Assembly(std::vector<Line> lines, const ValueReader& read, bool isNorthAmerican)
      : lines_(std::move(lines)), read_(read), isNorthAmerican_(isNorthAmerican) {
    hasFive_ = std::ranges::any_of(
        lines_, [](const Line& line) { return line.label && line.label->number == "5"; });
  }

  Named named() {
    takeInline();
    std::vector<Pair> found = pairs();
    std::ranges::stable_sort(found, {}, &Pair::distance);
    for (Pair& pair : found)
      take(std::move(pair));
    for (DocumentField& field : named_.fields) {
      if (field.name == FieldName::address) addLinesBelow(field);
    }
    return std::move(named_);
  }

 private:
  std::optional<FieldName> nameOf(const LabelledText& label) const {
    if (label.hasWords) return label.name;
    const auto name = numberedField(label.number, isNorthAmerican_);
    // A European licence has its own number under 5; Canadian ones in French have it under 4d.
    return name || hasFive_ ? name : numberedField(label.number, true);
  }

  void take(Pair pair) {
    if (names_.contains(pair.name) || !used_.insert(pair.text).second) return;
    names_.insert(pair.name);
    DocumentField field{pair.name,
                        std::move(pair.value),
                        FieldSource::print,
                        static_cast<float>(pair.text->confidence),
                        false,
                        pair.text->box};
    if (pair.isOfEitherName) {
      named_.eitherName = std::move(field);
    } else {
      named_.fields.push_back(std::move(field));
    }
  }

  void takeInline() {
    for (Line& line : lines_) {
      if (!line.label || line.label->rest.empty()) continue;
      const auto name = nameOf(*line.label);
      if (!name) continue;
      if (auto value = read_(*name, line.label->rest)) {
        take({0, *name, line.label->isOfEitherName, line.print, *std::move(value)});
      } else {
        // More of the label, in words that are not known.
        line.label->rest.clear();
      }
    }
  }

  std::vector<Pair> pairs() const {
    std::vector<Pair> found;
    for (const Line& label : lines_) {
      const auto name = label.label ? nameOf(*label.label) : std::nullopt;
      if (!name || !label.label->rest.empty()) continue;
      for (const Line& text : lines_) {
        if (text.label) continue;
        const auto apart = distance(label.print->box, text.print->box);
        if (!apart) continue;
        if (auto value = read_(*name, text.print->text))
          found.push_back(
              {*apart, *name, label.label->isOfEitherName, text.print, *std::move(value)});
      }
    }
    return found;
  }

  /// An address has several lines, of which the label names the first.
  void addLinesBelow(DocumentField& address) {
    platform::CGRect last = *address.place;
    for (std::size_t count = 1; count < kMostAddressLines; ++count) {
      const auto next = std::ranges::find_if(lines_, [&](const Line& line) {
        const platform::CGRect& box = line.print->box;
        return !line.label && !used_.contains(line.print) && box.midY() > last.maxY() &&
               box.minY() - last.maxY() < last.height && box.minX() < last.maxX() &&
               box.maxX() > last.minX();
      });
      if (next == lines_.end()) return;
      used_.insert(next->print);
      address.value += ", " + next->print->text;
      last = next->print->box;
    }
  }

  std::vector<Line> lines_;
  const ValueReader& read_;
  bool isNorthAmerican_;
  bool hasFive_ = false;
  std::set<FieldName> names_;
  std::set<const TextLine*> used_;
  Named named_;
};

}  // namespace

std::vector<DocumentField> printedFields(const std::vector<TextLine>& lines,
                                         const FieldLabels& labels, const CalendarDate& today,
                                         const std::vector<PlacedField>& places,
                                         const std::vector<DocumentField>& record) {
  const bool isAmerican = isNorthAmerican(lines);
  const ValueReader read(today, isAmerican);
  const std::vector<TextLine> parted = partedLines(lines, labels, read);
  auto [fields, eitherName] = Assembly(labelledLines(parted, labels), read, isAmerican).named();
  if (eitherName) addEitherName(*std::move(eitherName), record, fields);
  settle(fields, record);
  for (DocumentField& placed : placedFields(parted, places, labels, read)) {
    const auto named = std::ranges::find(fields, placed.name, &DocumentField::name);
    if (named == fields.end()) fields.push_back(std::move(placed));
  }
  addUnlabelled(parted, read, record, fields);
  leaveLabelsOut(parted, read, record, fields);
  addIssueDate(parted, record, fields);
  addSurnameAbove(parted, labels, read, record, fields);
  correctMarkedLetters(record, fields);
  return fields;
}

}  // namespace corvana::engine
