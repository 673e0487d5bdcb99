#include "engine/document/fields/FieldLabels.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "engine/document/fields/EditDistance.h"
#include "engine/document/fields/Transliteration.h"
#include "engine/document/kinds/DataFolder.h"
#include "engine/document/kinds/LabelFile.h"
#include "engine/json/JsonObject.h"

namespace corvana::engine {
namespace {

using corvana::FieldName;

using Labels = std::map<std::string, std::optional<FieldName>>;

/// Small print is misread now and then, and blanks get lost in it.
constexpr std::size_t kLettersPerError = 7;

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
};

/// The label itself, or else the one with the fewest letters misread.
const Labels::value_type* labelIn(const Labels& labels, const std::string& letters) {
  if (const auto exact = labels.find(letters); exact != labels.end()) return &*exact;
  const Labels::value_type* nearest = nullptr;
  std::size_t fewest = letters.size();
  for (const auto& label : labels) {
    const std::string& words = label.first;
    const std::size_t allowed = words.size() / kLettersPerError;
    const std::size_t apart =
        std::max(words.size(), letters.size()) - std::min(words.size(), letters.size());
    if (allowed == 0 || apart > allowed) continue;
    const std::size_t errors = editDistance(words, letters);
    if (errors > allowed || errors >= fewest) continue;
    fewest = errors;
    nearest = &label;
  }
  return nearest;
}

/// The longest label that the words from `first` on begin with.
Match longestLabel(const Labels& labels, const std::vector<Word>& words, std::size_t first) {
  Match match;
  std::string text;
  for (std::size_t count = 1; count <= kMostLabelWords && first + count <= words.size(); ++count) {
    text += words[first + count - 1].letters;
    if (const auto* label = labelIn(labels, text)) match = {label, count};
  }
  return match;
}

/// A label whose first language is not known, but one of the others is.
Match labelBehindStroke(const Labels& labels, const std::string& text) {
  for (std::size_t stroke = text.find('/'); stroke != std::string::npos;
       stroke = text.find('/', stroke + 1)) {
    const std::vector<Word> words = wordsOf(text.substr(stroke + 1));
    const Match match = longestLabel(labels, words, 0);
    if (match.label != nullptr && match.words == words.size()) return match;
  }
  return {};
}

tl::unexpected<platform::Fault> differs(const FieldLabel& label, const std::filesystem::path& file,
                                        const std::filesystem::path& other) {
  return platform::failure("The label " + JsonObject::quoted(label.text) + " in \"" +
                           file.string() + "\" stands for another field in \"" + other.string() +
                           "\"; leave it out of one of them.");
}

}  // namespace

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
        const auto [known, isNew] = result.labels_.emplace(label.letters, label.name);
        if (isNew) sources[label.letters] = file;
        if (known->second != label.name) return differs(label, file, sources[label.letters]);
      }
      result.languages_[table->language] += table->labels.size();
    }
  }
  return result;
}

std::optional<LabelledText> FieldLabels::labelledText(const std::string& line) const {
  LabelledText result;
  std::size_t end = 0;
  result.number = leadingNumber(line, end);
  const std::string text = line.substr(end);
  const std::vector<Word> words = wordsOf(text);
  std::size_t at = 0;
  std::size_t labelEnd = 0;
  while (at < words.size()) {
    const Match match = longestLabel(labels_, words, at);
    if (match.label == nullptr) break;
    if (!result.name) result.name = match.label->second;
    result.hasWords = true;
    at += match.words;
    labelEnd = words[at - 1].end;
    if (words[at - 1].endsLabel) break;
  }
  if (!result.hasWords) {
    if (const Match match = labelBehindStroke(labels_, text); match.label != nullptr) {
      return LabelledText{match.label->second, result.number, true, {}};
    }
  }
  if (!result.hasWords && result.number.empty()) return std::nullopt;
  result.rest = restFrom(text, labelEnd);
  return result;
}

}  // namespace corvana::engine
