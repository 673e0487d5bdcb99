#include "engine/document/mrz/MrzParser.h"

#include <algorithm>
#include <array>
#include <optional>
#include <tuple>
#include <utility>

#include "engine/document/mrz/MrzLayout.h"
#include "engine/document/text/AsciiLetters.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {
namespace {

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r';
}

class Zone {
 public:
  Zone(const MrzLayout& layout, const std::vector<std::string>& lines)
      : layout_(layout), lines_(lines) {}

  std::string_view at(const MrzSpan& span) const { return mrzField(lines_, span); }
  char after(const MrzSpan& span) const { return lines_[span.line][span.start + span.length]; }
  const MrzLayout& layout() const { return layout_; }

  std::string composite() const {
    std::string all;
    for (const MrzSpan& span : layout_.composite)
      all += at(span);
    return all;
  }

 private:
  const MrzLayout& layout_;
  const std::vector<std::string>& lines_;
};

std::string withoutFillers(std::string_view field) {
  const auto end = field.find_last_not_of(kMrzFiller);
  return std::string(field.substr(0, end == std::string_view::npos ? 0 : end + 1));
}

bool isCheckDigitOf(char digit, std::string_view field) {
  return isDigit(digit) && digit - '0' == mrzCheckDigit(field);
}

struct DocumentNumber {
  std::string value;
  bool isValid = false;
};

/// A number longer than its nine places has a filler in place of its check digit and goes on at the
/// start of the optional data, where its check digit is the last character before the next filler.
DocumentNumber documentNumber(const Zone& zone) {
  const std::string_view first = zone.at(zone.layout().number);
  const char digit = zone.after(zone.layout().number);
  if (digit != kMrzFiller || !zone.layout().longNumber) {
    return {withoutFillers(first), isCheckDigitOf(digit, first)};
  }
  const std::string_view optional = zone.at(*zone.layout().longNumber);
  const std::string_view rest = optional.substr(0, optional.find(kMrzFiller));
  if (rest.size() < 2) return {};
  const std::string whole = std::string(first) + std::string(rest.substr(0, rest.size() - 1));
  return {whole, isCheckDigitOf(rest.back(), whole)};
}

/// The check digit of an empty field may be a filler.
bool isPersonalNumberValid(const Zone& zone) {
  if (!zone.layout().personalNumber) return true;
  const std::string_view field = zone.at(*zone.layout().personalNumber);
  const char digit = zone.after(*zone.layout().personalNumber);
  if (digit == kMrzFiller) return withoutFillers(field).empty();
  return isCheckDigitOf(digit, field);
}

int number(std::string_view digits) {
  int value = 0;
  for (const char c : digits)
    value = 10 * value + (c - '0');
  return value;
}

bool isCalendarDate(std::string_view yymmdd) {
  if (!std::all_of(yymmdd.begin(), yymmdd.end(), isDigit)) return false;
  constexpr std::array<int, 12> kDays{31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const int year = number(yymmdd.substr(0, 2));
  const int month = number(yymmdd.substr(2, 2));
  const int day = number(yymmdd.substr(4, 2));
  if (month < 1 || month > 12 || day < 1) return false;
  // Two digits do not tell 1900 from 2000; the latter, a leap year, is the likelier.
  const bool isLeapYear = year % 4 == 0;
  return day <= (month == 2 && !isLeapYear ? 28 : kDays[static_cast<std::size_t>(month - 1)]);
}

/// Unknown parts of a birth date are fillers: the day, the month and day, or all.
bool isBirthDate(std::string_view yymmdd) {
  std::string known(yymmdd);
  if (known.substr(4) == "<<") known.replace(4, 2, "01");
  if (known.substr(2, 2) == "<<") {
    if (yymmdd.substr(4) != "<<") return false;
    known.replace(2, 2, "01");
  }
  if (known.substr(0, 2) == "<<") known.replace(0, 2, "00");
  return isCalendarDate(known);
}

bool isLettersAndFillers(std::string_view field) {
  return std::all_of(field.begin(), field.end(),
                     [](char c) { return isCapital(c) || c == kMrzFiller; });
}

std::optional<std::string> fault(const Zone& zone, const DocumentNumber& documentNumber) {
  const MrzLayout& layout = zone.layout();
  if (!isCapital(zone.at(kMrzDocumentCode).front())) return "the document code is not a letter";
  if (!isLettersAndFillers(zone.at(kMrzIssuingState))) return "the issuing state holds a digit";
  if (!isLettersAndFillers(zone.at(layout.nationality))) return "the nationality holds a digit";
  if (!isLettersAndFillers(zone.at(layout.names))) return "the name holds a digit";
  if (zone.at(layout.names).front() == kMrzFiller) return "the name is empty";
  if (std::string_view("MFX<").find(zone.at(layout.sex).front()) == std::string_view::npos) {
    return "the sex is none of M, F and <";
  }
  if (!isBirthDate(zone.at(layout.birthDate))) return "the birth date is no date";
  if (!isCalendarDate(zone.at(layout.expiryDate))) return "the expiry date is no date";
  if (!documentNumber.isValid) return "the check digit of the document number is wrong";
  if (!isCheckDigitOf(zone.after(layout.birthDate), zone.at(layout.birthDate))) {
    return "the check digit of the birth date is wrong";
  }
  if (!isCheckDigitOf(zone.after(layout.expiryDate), zone.at(layout.expiryDate))) {
    return "the check digit of the expiry date is wrong";
  }
  if (!isPersonalNumberValid(zone)) return "the check digit of the personal number is wrong";
  if (!isCheckDigitOf(zone.at(layout.compositeDigit).front(), zone.composite())) {
    return "the composite check digit is wrong";
  }
  return std::nullopt;
}

/// Surname and given names are parted by two fillers, the names of each by one.
std::pair<std::string, std::string> names(std::string_view field) {
  const auto gap = field.find("<<");
  std::string surname(field.substr(0, gap));
  std::string given(gap == std::string_view::npos ? "" : field.substr(gap + 2));
  for (std::string* name : {&surname, &given}) {
    *name = withoutFillers(*name);
    std::replace(name->begin(), name->end(), kMrzFiller, ' ');
  }
  return {surname, given};
}

const MrzLayout* layoutOf(const std::vector<std::string>& lines) {
  for (const MrzLayout& layout : mrzLayouts()) {
    const bool fits = lines.size() == layout.lineCount &&
                      std::all_of(lines.begin(), lines.end(), [&](const std::string& line) {
                        return line.size() == layout.lineLength;
                      });
    if (fits) return &layout;
  }
  return nullptr;
}

}  // namespace

int mrzCheckDigit(std::string_view field) {
  constexpr std::array<int, 3> kWeights{7, 3, 1};
  int sum = 0;
  for (std::size_t i = 0; i < field.size(); ++i) {
    const char c = field[i];
    const int value = isDigit(c) ? c - '0' : isCapital(c) ? c - 'A' + 10 : 0;
    sum += kWeights[i % kWeights.size()] * value;
  }
  return sum % 10;
}

platform::Expected<corvana::MRZResult> parseMrz(const std::vector<std::string>& lines) {
  const MrzLayout* layout = layoutOf(lines);
  if (layout == nullptr) {
    return platform::failure("not three lines of 30, two of 36 or two of 44 characters");
  }
  for (const std::string& line : lines) {
    if (!std::all_of(line.begin(), line.end(),
                     [](char c) { return isDigit(c) || isCapital(c) || c == kMrzFiller; })) {
      return platform::failure("a character other than A to Z, 0 to 9 and <");
    }
  }
  const Zone zone(*layout, lines);
  const DocumentNumber number = documentNumber(zone);
  if (auto reason = fault(zone, number)) return platform::failure(*std::move(reason));

  corvana::MRZResult result;
  result.lines = lines;
  result.documentCode = withoutFillers(zone.at(kMrzDocumentCode));
  result.issuingState = withoutFillers(zone.at(kMrzIssuingState));
  result.documentNumber = number.value;
  result.birthDate = zone.at(layout->birthDate);
  result.sex = zone.at(layout->sex) == "X" ? "<" : zone.at(layout->sex);
  result.expiryDate = zone.at(layout->expiryDate);
  result.nationality = withoutFillers(zone.at(layout->nationality));
  std::tie(result.surname, result.givenNames) = names(zone.at(layout->names));
  return result;
}

platform::Expected<corvana::MRZResult> parseMrz(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    while (!line.empty() && isBlank(line.back()))
      line.remove_suffix(1);
    while (!line.empty() && isBlank(line.front()))
      line.remove_prefix(1);
    if (!line.empty()) lines.emplace_back(line);
  }
  return parseMrz(lines);
}

}  // namespace corvana::engine
