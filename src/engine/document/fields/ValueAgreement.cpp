#include "engine/document/fields/ValueAgreement.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "engine/document/fields/Transliteration.h"
#include "engine/document/fields/ValueReader.h"
#include "engine/document/mrz/StateCodes.h"

namespace corvana::engine {
namespace {

using corvana::DocumentField;
using corvana::FieldAgreement;
using corvana::FieldName;

/// A number without blanks and signs, its letters as the digits they are taken for, but for G and
/// L: no check digit tells them from 6 and 1, so that print has to.
std::string numberSkeleton(std::string_view text) {
  constexpr std::string_view kLetters = "OQIZSB";
  constexpr std::string_view kDigits = "001258";
  std::string capitals(text);
  std::ranges::replace(capitals, 'l', '1');  // numbers have no small letters
  std::string skeleton;
  for (const char c : plainLetters(capitals)) {
    const auto at = kLetters.find(c);
    if (c != ' ') skeleton += at == std::string_view::npos ? c : kDigits[at];
  }
  return skeleton;
}

void replaceAll(std::string& text, std::string_view written, std::string_view taken) {
  for (auto at = text.find(written); at != std::string::npos; at = text.find(written, at))
    text.replace(at, written.size(), taken);
}

/// The letters with those alike that a reader takes for each other: Þ, which zones write TH, for P,
/// Œ and Æ for E, and where a dot stands below them Ọ for Q and Ị for an exclamation mark.
std::string misreadLetters(std::string_view text) {
  std::string dotted(text);
  replaceAll(dotted, "!", "I");
  std::string letters = zoneLetters(dotted);
  std::erase(letters, ' ');
  for (const auto& [written, taken] : {std::pair("TH", "P"), {"OE", "E"}, {"AE", "E"}, {"Q", "O"}})
    replaceAll(letters, written, taken);
  return letters;
}

bool isBeginning(const std::vector<std::string>& part, const std::vector<std::string>& whole) {
  return !part.empty() && part.size() <= whole.size() &&
         std::equal(part.begin(), part.end(), whole.begin());
}

std::vector<std::string> wordSkeletons(const std::string& names) {
  std::vector<std::string> all = wordsBetweenBlanks(zoneLetters(names));
  for (std::string& word : all)
    word = letterSkeleton(word);
  return all;
}

/// A side may leave out the last of several names or add a name of birth; two surnames may stand on
/// two lines.
bool doNamesAgree(const std::string& printed, const DocumentField& field) {
  const std::string a = letterSkeleton(printed);
  const std::string b = letterSkeleton(field.value);
  if (a == b || isLikeWhereMarked(printed, field.value) ||
      (field.isTruncated && !b.empty() && a.starts_with(b)))
    return true;
  const auto ofPrint = wordSkeletons(printed);
  const auto ofField = wordSkeletons(field.value);
  return isBeginning(ofPrint, ofField) || isBeginning(ofField, ofPrint);
}

/// A check digit behind the number may be printed with it.
bool doNumbersAgree(const std::string& printed, const std::string& value) {
  const std::string a = numberSkeleton(printed);
  const std::string b = numberSkeleton(value);
  return a == b || (b.size() >= kLeastNearNumber && a.size() == b.size() + 1 && a.starts_with(b));
}

/// What a nationality says in the language of its card is compared as far as it begins like the
/// state's code; only another code is a conflict.
FieldAgreement ofNationality(const std::string& printed, const std::string& code) {
  const auto all = plainWords(printed);
  const auto isCode = [&](const std::string& word) { return word == code; };
  if (std::ranges::any_of(all, isCode)) return FieldAgreement::agrees;
  if (all.size() == 1 && all.front().size() > 3 && all.front().starts_with(code)) {
    return FieldAgreement::agrees;
  }
  const bool isOtherCode =
      all.size() == 1 && all.front().size() == 3 && code.size() == 3 && isMrzStateCode(all.front());
  return isOtherCode ? FieldAgreement::conflicts : FieldAgreement::unread;
}

}  // namespace

bool isName(FieldName name) {
  return name == FieldName::surname || name == FieldName::givenNames;
}

bool isDate(FieldName name) {
  return name == FieldName::birthDate || name == FieldName::issueDate ||
         name == FieldName::expiryDate;
}

bool isSearched(FieldName name) {
  return isName(name) || isDate(name) || name == FieldName::documentNumber;
}

std::string skeletonOf(FieldName name, std::string_view text) {
  return isName(name) ? letterSkeleton(text) : numberSkeleton(text);
}

bool isLikeWhereMarked(std::string_view printed, const std::string& value) {
  const std::string pattern = withoutMarkedLetters(printed);
  const std::string plain = letterSkeleton(value);
  return pattern.size() == plain.size() &&
         std::equal(pattern.begin(), pattern.end(), plain.begin(),
                    [](char p, char v) { return p == kMarkedLetter || p == v; });
}

bool isMisread(std::string_view printed, const std::string& value) {
  return misreadLetters(printed) == misreadLetters(value);
}

FieldAgreement agreementOf(const std::string& printed, const DocumentField& field) {
  const auto orConflict = [](bool agrees) {
    return agrees ? FieldAgreement::agrees : FieldAgreement::conflicts;
  };
  switch (field.name) {
    case FieldName::surname:
    case FieldName::givenNames:
      if (doNamesAgree(printed, field)) return FieldAgreement::agrees;
      return isMisread(printed, field.value) ? FieldAgreement::unread : FieldAgreement::conflicts;
    case FieldName::documentNumber:
      return orConflict(doNumbersAgree(printed, field.value));
    case FieldName::birthDate:
    case FieldName::issueDate:
    case FieldName::expiryDate:
      return orConflict(printed.starts_with(field.value) || field.value.starts_with(printed));
    case FieldName::sex:
      return orConflict(printed == field.value);
    case FieldName::nationality:
      return ofNationality(printed, field.value);
    case FieldName::authority:
    case FieldName::address:
      break;
  }
  return letterSkeleton(printed) == letterSkeleton(field.value) ? FieldAgreement::agrees
                                                                : FieldAgreement::unread;
}

}  // namespace corvana::engine
