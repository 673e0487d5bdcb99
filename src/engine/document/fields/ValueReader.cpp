#include "engine/document/fields/ValueReader.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <sstream>
#include <vector>

#include "engine/document/fields/Transliteration.h"

namespace corvana::engine {
namespace {

using corvana::FieldName;

constexpr std::size_t kLeastNumberLength = 5;
constexpr std::size_t kMostNumberLength = 20;
/// Numbers begin with letters now and then, but longer words are the label's.
constexpr std::size_t kMostLettersOfANumber = 5;

std::size_t digitCount(const std::string& text) {
  return static_cast<std::size_t>(
      std::ranges::count_if(text, [](char c) { return c >= '0' && c <= '9'; }));
}

std::optional<std::string> sexIn(const std::string& text) {
  static const std::set<std::string> kMale{"M", "MALE"};
  static const std::set<std::string> kFemale{"F", "FEMALE", "W"};
  bool isMale = false;
  bool isFemale = false;
  bool isOpen = false;
  for (const std::string& word : plainWords(text)) {
    isMale |= kMale.contains(word);
    isFemale |= kFemale.contains(word);
    isOpen |= word == "X";
  }
  if (int(isMale) + int(isFemale) + int(isOpen) != 1) return std::nullopt;
  return isMale ? "M" : isFemale ? "F" : "X";
}

/// The number without a date or another field that was read in one with it.
std::optional<std::string> numberIn(const std::string& text) {
  std::string number;
  for (const std::string& word : plainWords(text)) {
    const bool hasDigits = digitCount(word) > 0;
    if (number.size() >= kLeastNumberLength && !hasDigits) break;
    const bool isOfLabel = number.empty() && !hasDigits && word.size() > kMostLettersOfANumber;
    if (!isOfLabel) number += word;
  }
  const bool isNumber = number.size() >= kLeastNumberLength && number.size() <= kMostNumberLength &&
                        digitCount(number) >= 2;
  return isNumber ? std::optional(number) : std::nullopt;
}

/// No number has a colon: what stands before one is its label's.
std::optional<std::string> numberBehindLabel(const std::string& text) {
  const auto colon = text.rfind(':');
  auto number = colon == std::string::npos ? std::nullopt : numberIn(text.substr(colon + 1));
  return number ? number : numberIn(text);
}

std::optional<std::string> wordsIn(const std::string& text) {
  const std::string plain = plainLetters(text);
  if (plain.size() < 2 || digitCount(plain) > 0) return std::nullopt;
  return text;
}

}  // namespace

std::vector<std::string> wordsBetweenBlanks(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

std::vector<std::string> plainWords(const std::string& text) {
  return wordsBetweenBlanks(plainLetters(text));
}

std::optional<std::string> ValueReader::operator()(FieldName name, const std::string& text) const {
  switch (name) {
    case FieldName::surname:
    case FieldName::givenNames:
    case FieldName::nationality:
      return wordsIn(text);
    case FieldName::documentNumber:
      return dateIn(text, false) ? std::nullopt : numberBehindLabel(text);
    case FieldName::birthDate:
      return dateIn(withDateBlanks(text), true);
    case FieldName::issueDate:
    case FieldName::expiryDate:
      return dateIn(withDateBlanks(text), false);
    case FieldName::sex:
      return sexIn(text);
    case FieldName::authority:
    case FieldName::address:
      break;
  }
  return plainLetters(text).size() < 2 ? std::nullopt : std::optional(text);
}

std::optional<std::string> ValueReader::dateIn(const std::string& text, bool isBirth) const {
  const auto dates =
      datesInPrint(text, today_, {.isBirth = isBirth, .isMonthFirst = isMonthFirst_});
  if (dates.empty()) return std::nullopt;
  return dates.front();
}

}  // namespace corvana::engine
