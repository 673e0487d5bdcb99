#include "capture/TextMatching.h"

#include <algorithm>
#include <memory>
#include <numeric>

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "platform/foundation/Require.h"

namespace corvana::capture {
namespace {

/// One user-perceived character: what it is compared by, and its length in the text as written.
struct Character {
  icu::UnicodeString decomposed;
  int length = 0;  ///< UTF-16 code units
};

bool sameCharacter(const Character& a, const Character& b) {
  return a.decomposed == b.decomposed;
}

void requireData(UErrorCode status) {
  platform::require(U_SUCCESS(status), "ICU has no data for the segmentation of text");
}

std::vector<Character> charactersOf(const icu::UnicodeString& text) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* decomposition = icu::Normalizer2::getNFDInstance(status);
  const std::unique_ptr<icu::BreakIterator> boundaries(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  requireData(status);
  boundaries->setText(text);
  std::vector<Character> result;
  for (int start = 0, end = boundaries->next(); end != icu::BreakIterator::DONE;
       start = end, end = boundaries->next()) {
    result.push_back(
        {decomposition->normalize(text.tempSubStringBetween(start, end), status), end - start});
  }
  requireData(status);
  return result;
}

std::vector<Character> charactersOf(const std::string& text) {
  return charactersOf(icu::UnicodeString::fromUTF8(text));
}

Character space() {
  return {icu::UnicodeString(u' '), 1};
}

/// Pieces between spaces that are not empty. Other white space belongs to its piece.
int countPieces(const std::vector<Character>& text) {
  const Character separator = space();
  int pieces = 0;
  bool inside = false;
  for (const Character& character : text) {
    const bool separates = sameCharacter(character, separator);
    if (!separates && !inside) ++pieces;
    inside = !separates;
  }
  return pieces;
}

int lengthOf(std::vector<Character>::const_iterator first,
             std::vector<Character>::const_iterator last) {
  return std::accumulate(first, last, 0,
                         [](int sum, const Character& next) { return sum + next.length; });
}

}  // namespace

int levenshteinDistance(const std::string& a, const std::string& b) {
  const std::vector<Character> rows = charactersOf(a);
  const std::vector<Character> columns = charactersOf(b);
  std::vector<int> last(columns.size() + 1);
  std::iota(last.begin(), last.end(), 0);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    std::vector<int> current(columns.size() + 1);
    current[0] = static_cast<int>(i) + 1;
    for (std::size_t j = 0; j < columns.size(); ++j) {
      current[j + 1] = sameCharacter(rows[i], columns[j])
                           ? last[j]
                           : std::min({last[j], last[j + 1], current[j]}) + 1;
    }
    last = std::move(current);
  }
  return last.back();
}

std::size_t characterCount(const std::string& text) {
  return charactersOf(text).size();
}

bool hasPrefixDroppingLast(const std::string& text, const std::string& prefix,
                           std::size_t dropped) {
  std::vector<Character> wanted = charactersOf(prefix);
  platform::require(wanted.size() >= dropped,
                    "the document type \"" + prefix + "\" is too short to name a family");
  wanted.resize(wanted.size() - dropped);
  const std::vector<Character> given = charactersOf(text);
  return given.size() >= wanted.size() &&
         std::equal(wanted.begin(), wanted.end(), given.begin(), sameCharacter);
}

std::string lowercased(const std::string& text) {
  std::string result;
  return icu::UnicodeString::fromUTF8(text).toLower(icu::Locale::getRoot()).toUTF8String(result);
}

std::string trimmed(const std::string& text) {
  const icu::UnicodeString all = icu::UnicodeString::fromUTF8(text);
  int start = 0;
  int end = all.length();
  while (start < end && u_isUWhiteSpace(all[start]))
    ++start;
  while (start < end && u_isUWhiteSpace(all[end - 1]))
    --end;
  std::string result;
  return all.tempSubStringBetween(start, end).toUTF8String(result);
}

SpokenWordMatch matchSpokenWords(const std::vector<std::string>& spokenWords,
                                 const std::string& text) {
  std::vector<Character> remaining = charactersOf(lowercased(text));
  const int writtenWords = countPieces(remaining);
  SpokenWordMatch match;
  for (const std::string& spoken : spokenWords) {
    const std::vector<Character> word = charactersOf(spoken);
    const auto first =
        std::search(remaining.begin(), remaining.end(), word.begin(), word.end(), sameCharacter);
    if (word.empty() || first == remaining.end()) continue;
    const auto end = first + static_cast<std::ptrdiff_t>(word.size());
    const MatchRange range{lengthOf(remaining.begin(), first), lengthOf(first, end)};
    match.ranges.push_back(range);
    // As many spaces as there were code units, so that later positions stay what they were.
    remaining.insert(remaining.erase(first, end), static_cast<std::size_t>(range.length), space());
  }
  match.percentage = static_cast<float>(match.ranges.size()) / static_cast<float>(writtenWords);
  return match;
}

}  // namespace corvana::capture
