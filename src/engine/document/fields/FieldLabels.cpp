#include "engine/document/fields/FieldLabels.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "engine/document/fields/EditDistance.h"
#include "engine/document/fields/Transliteration.h"
#include "engine/document/kinds/DataFolder.h"
#include "engine/document/kinds/LabelFile.h"
#include "engine/document/text/AsciiLetters.h"
#include "engine/json/JsonFile.h"
#include "engine/json/JsonObject.h"

namespace corvana::engine {
namespace {

using corvana::FieldName;

using Labels = std::map<std::string, LabelMeaning>;

/// Small print is misread now and then, and blanks get lost in it.
constexpr std::size_t kLettersPerError = 7;
/// A part of a line between strokes is hardly anything but a label.
constexpr std::size_t kLettersPerErrorInParts = 4;

struct Numbered {
  std::string_view number;
  std::optional<FieldName> usual;
  std::optional<FieldName> northAmerican;
};

/// ISO 18013 and the AAMVA's standard, which part at the number of the licence.
constexpr std::array<Numbered, 10> kNumbers{{
    {"1", FieldName::surname, FieldName::surname},
    {"2", FieldName::givenNames, FieldName::givenNames},
    {"3", FieldName::birthDate, FieldName::birthDate},
    {"4A", FieldName::issueDate, FieldName::issueDate},
    {"4B", FieldName::expiryDate, FieldName::expiryDate},
    {"4C", FieldName::authority, std::nullopt},
    {"4D", std::nullopt, FieldName::documentNumber},
    {"5", FieldName::documentNumber, std::nullopt},
    {"8", FieldName::address, FieldName::address},
    {"15", std::nullopt, FieldName::sex},
}};

bool isWordByte(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         (static_cast<unsigned char>(c) & 0x80U) != 0;
}

std::string restFrom(const std::string& line, std::size_t at) {
  const auto first = line.find_first_not_of(" \t:./|-)", at);
  if (first == std::string::npos) return {};
  const auto last = line.find_last_not_of(" \t");
  return line.substr(first, last + 1 - first);
}

/// A licence's number may touch its value: "4a.01.02.2020".
std::string leadingNumber(const std::string& line, std::size_t& end) {
  std::size_t at = 0;
  while (at < line.size() && at < 2 && line[at] >= '0' && line[at] <= '9')
    ++at;
  if (at == 0) return {};
  const char letter = at < line.size() ? static_cast<char>(line[at] & 0xDF) : '\0';
  const bool hasLetter = at == 1 && line[0] == '4' && letter >= 'A' && letter <= 'D';
  if (hasLetter) ++at;
  const bool endsThere = at == line.size() || line[at] == '.' || line[at] == ' ' || line[at] == ':';
  if (!endsThere) return {};
  std::string number = plainLetters(line.substr(0, at));
  const bool isKnown = std::ranges::find(kNumbers, number, &Numbered::number) != kNumbers.end();
  // "12.08.1984" is no line numbered 12.
  const bool isDate = !hasLetter && at + 1 < line.size() && line[at] == '.' &&
                      line[at + 1] != ' ' && line.find('.', at + 1) != std::string::npos;
  if (!isKnown || isDate) return {};
  end = at;
  return number;
}

std::string lettersOf(const std::string& text) {
  std::string letters = plainLetters(text);
  std::erase(letters, ' ');
  return letters;
}

/// A word of a line, folded, with where it ends in the line.
struct Word {
  std::string letters;
  std::size_t end;
  bool endsLabel;  ///< a colon follows
};

std::vector<Word> wordsOf(const std::string& line) {
  std::vector<Word> words;
  for (std::size_t at = 0; at < line.size();) {
    if (!isWordByte(line[at])) {
      if (line[at] == ':' && !words.empty()) words.back().endsLabel = true;
      ++at;
      continue;
    }
    std::size_t end = at;
    while (end < line.size() && isWordByte(line[end]))
      ++end;
    std::string letters = lettersOf(line.substr(at, end - at));
    if (!letters.empty()) words.push_back({std::move(letters), end, false});
    at = end;
  }
  return words;
}

struct Match {
  const Labels::value_type* label = nullptr;
  std::size_t words = 0;
  std::size_t errors = 0;
};

/// Letters that look alike in small print are made one: "rn" and "m", "l", "I" and "1".
std::string shapeOf(const std::string& letters) {
  std::string shape;
  for (const char letter : letters) {
    if (letter == 'N' && !shape.empty() && shape.back() == 'R') {
      shape.back() = 'M';
    } else {
      shape += letter == 'L' || letter == '1' ? 'I' : letter == '0' ? 'O' : letter;
    }
  }
  return shape;
}

/// The label itself, or else the one with the fewest letters misread.
Match labelIn(const Labels& labels, const std::string& letters, std::size_t lettersPerError) {
  if (const auto exact = labels.find(letters); exact != labels.end()) return {&*exact, 0, 0};
  const std::string shape = shapeOf(letters);
  Match nearest;
  std::size_t fewest = letters.size();
  for (const auto& label : labels) {
    const std::string words = shapeOf(label.first);
    const std::size_t allowed = label.first.size() / lettersPerError;
    const std::size_t apart =
        std::max(words.size(), shape.size()) - std::min(words.size(), shape.size());
    if (allowed == 0 || apart > allowed) continue;
    const std::size_t errors = editDistance(words, shape);
    if (errors > allowed || errors >= fewest) continue;
    fewest = errors;
    nearest = {&label, 0, errors};
  }
  return nearest;
}

/// Whether a label with one word more is the better one: the errors of a longer label may be a
/// short name behind a shorter one.
bool isBetter(const Match& longer, const Match& shorter) {
  if (longer.label == nullptr || shorter.label == nullptr) return longer.label != nullptr;
  const std::size_t least = shorter.label->first.size() + kLettersPerErrorInParts * longer.errors;
  return longer.label->first.size() >= least;
}

/// The longest label that the words from `first` on begin with.
Match longestLabel(const Labels& labels, const std::vector<Word>& words, std::size_t first) {
  Match match;
  std::string text;
  for (std::size_t count = 1; count <= kMostLabelWords && first + count <= words.size(); ++count) {
    text += words[first + count - 1].letters;
    if (const Match found = labelIn(labels, text, kLettersPerError); isBetter(found, match))
      match = {found.label, count, found.errors};
  }
  return match;
}

/// The label that the text is as a whole, if only by its looks.
Match wholeLabel(const Labels& labels, const std::string& text) {
  const std::string letters = lettersOf(text);
  return letters.empty() ? Match{} : labelIn(labels, letters, kLettersPerErrorInParts);
}

/// Whether a stroke is at the place. Those of dates part nothing, nor does a digit in one.
bool isStroke(const std::string& line, std::size_t at) {
  const auto isAround = [&](const auto& holds) {
    return at > 0 && at + 1 < line.size() && holds(line[at - 1]) && holds(line[at + 1]);
  };
  if (line[at] == '/' || line[at] == '|') return !isAround(isDigit);
  const auto isBlank = [](char c) { return c == ' '; };
  return isLikeStroke(std::string_view(line).substr(at, 1)) && isAround(isBlank) &&
         std::none_of(line.begin() + static_cast<std::ptrdiff_t>(at) + 1, line.end(), isDigit);
}

/// What lies between the strokes of a line.
std::vector<std::string> partsOf(const std::string& line) {
  std::vector<std::string> parts(1);
  for (std::size_t at = 0; at < line.size(); ++at) {
    if (isStroke(line, at)) {
      parts.emplace_back();
    } else {
      parts.back() += line[at];
    }
  }
  return parts;
}

/// Of several labels the first says what the field is, unless another knows it more exactly.
void addMeaning(LabelledText& text, const LabelMeaning& meaning) {
  if (text.name && !(text.isOfEitherName && meaning.name)) return;
  text.name = meaning.name;
  text.isOfEitherName = meaning.isOfEitherName;
}

/// The labels that a text begins with, in one language or several.
LabelledText labelsBefore(const Labels& labels, const std::string& text) {
  LabelledText result;
  const std::vector<Word> words = wordsOf(text);
  std::size_t at = 0;
  std::size_t end = 0;
  while (at < words.size()) {
    const Match match = longestLabel(labels, words, at);
    if (match.label == nullptr) break;
    addMeaning(result, match.label->second);
    result.hasWords = true;
    at += match.words;
    end = words[at - 1].end;
    if (words[at - 1].endsLabel) break;
  }
  result.rest = restFrom(text, end);
  return result;
}

/// The label for which most letters of one of the parts speak: one of a field rather than none,
/// and one that may be either name's only if no other part says clearly which.
Match surestLabel(const Labels& labels, const std::vector<std::string>& parts) {
  constexpr double kOfNoField = 0.01;
  constexpr double kOfEitherName = 0.2;  // less than one letter of a short label that is misread
  Match surest;
  double least = 1 + kOfEitherName;
  for (const std::string& part : parts) {
    const Match match = wholeLabel(labels, part);
    if (match.label == nullptr) continue;
    const double errors = static_cast<double>(match.errors);
    const LabelMeaning& meaning = match.label->second;
    const double share = errors / static_cast<double>(match.label->first.size()) +
                         (meaning.name ? 0 : kOfNoField) +
                         (meaning.isOfEitherName ? kOfEitherName : 0);
    if (share >= least) continue;
    least = share;
    surest = match;
  }
  return surest;
}

/// A line with strokes: labels in several languages, of which one may be unknown or misread, and
/// then perhaps a value.
std::optional<LabelledText> labelsBetweenStrokes(const Labels& labels, const std::string& text,
                                                 const std::vector<std::string>& parts) {
  LabelledText last = labelsBefore(labels, parts.back());
  const Match surest = surestLabel(labels, parts);
  if (surest.label != nullptr) {
    const bool hasDigits = std::ranges::any_of(parts.back(), isDigit);
    const bool isValue =
        last.hasWords || (hasDigits && wholeLabel(labels, parts.back()).label == nullptr);
    const auto& [name, isOfEitherName] = surest.label->second;
    return LabelledText{name, isOfEitherName, {}, true, isValue ? last.rest : std::string()};
  }
  if (last.hasWords) return last;
  LabelledText first = labelsBefore(labels, text);
  if (!first.hasWords) return std::nullopt;
  // What follows is another language's.
  if (std::ranges::none_of(first.rest, isDigit)) first.rest.clear();
  return first;
}

/// The label in several words with which a text ends: what stands before it is the same in a
/// language that is not known, from which no stroke parts it.
std::optional<LabelledText> labelAtEnd(const Labels& labels, const std::string& text) {
  constexpr std::size_t kLeastWords = 2;
  constexpr std::size_t kLeastLetters = 9;
  if (std::ranges::any_of(text, isDigit)) return std::nullopt;
  const std::vector<Word> words = wordsOf(text);
  for (std::size_t first = 1; first + kLeastWords <= words.size(); ++first) {
    std::string letters;
    for (std::size_t i = first; i < words.size(); ++i)
      letters += words[i].letters;
    const Match match = labelIn(labels, letters, kLettersPerError);
    if (match.label == nullptr || match.label->first.size() < kLeastLetters) continue;
    const auto& [name, isOfEitherName] = match.label->second;
    return LabelledText{name, isOfEitherName, {}, true, {}};
  }
  return std::nullopt;
}

tl::unexpected<platform::Fault> differs(const FieldLabel& label, const std::filesystem::path& file,
                                        const std::filesystem::path& other) {
  return platform::failure("The label " + JsonObject::quoted(label.text) + " in " + inQuotes(file) +
                           " stands for another field in " + inQuotes(other) +
                           "; leave it out of one of them.");
}

}  // namespace

bool isLikeStroke(std::string_view word) {
  return word == "I" || word == "l" || word == "1" || word == "!";
}

std::optional<FieldName> numberedField(const std::string& number, bool isNorthAmerican) {
  const auto entry = std::ranges::find(kNumbers, number, &Numbered::number);
  if (entry == kNumbers.end()) return std::nullopt;
  return isNorthAmerican ? entry->northAmerican : entry->usual;
}

platform::Expected<FieldLabels> FieldLabels::load(
    const std::vector<std::filesystem::path>& folders) {
  FieldLabels result;
  std::map<std::string, std::filesystem::path> sources;
  for (const auto& folder : folders) {
    const auto files = dataFilesIn(folder);
    if (!files) return tl::unexpected(files.error());
    for (const auto& file : *files) {
      const auto table = readLabelFile(file);
      if (!table) return tl::unexpected(table.error());
      for (const FieldLabel& label : table->labels) {
        const LabelMeaning meaning{label.name, label.isOfEitherName};
        const auto [known, isNew] = result.labels_.emplace(label.letters, meaning);
        if (isNew) sources[label.letters] = file;
        if (known->second != meaning) return differs(label, file, sources[label.letters]);
      }
      result.languages_[table->language] += table->labels.size();
    }
  }
  return result;
}

bool FieldLabels::isLabel(const std::string& text) const {
  return labels_.contains(lettersOf(text));
}

std::optional<LabelledText> FieldLabels::labelledText(const std::string& line) const {
  std::size_t end = 0;
  const std::string number = leadingNumber(line, end);
  const std::string text = line.substr(end);
  const std::vector<std::string> parts = partsOf(text);
  std::optional<LabelledText> result;
  const bool hasColon = text.find(':') != std::string::npos;
  if (parts.size() > 1 && !hasColon) result = labelsBetweenStrokes(labels_, text, parts);
  if (!result) result = labelsBefore(labels_, text);
  if (!result->hasWords && number.empty()) return labelAtEnd(labels_, text);
  if (result->hasWords && wholeLabel(labels_, result->rest).label != nullptr) result->rest.clear();
  result->number = number;
  return result;
}

}  // namespace corvana::engine
