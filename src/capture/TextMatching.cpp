#include "capture/TextMatching.h"

#include <algorithm>
#include <map>
#include <memory>
#include <numeric>
#include <utility>

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "platform/foundation/Require.h"

namespace corvana::capture {
namespace {

/// One user-perceived character: the number of what it is compared by, and its length in the text
/// as written.
struct Character {
  int number = 0;
  int length = 0;  ///< UTF-16 code units
};

constexpr int kSpace = ' ';

bool sameCharacter(const Character& a, const Character& b) {
  return a.number == b.number;
}

void requireData(UErrorCode status) {
  platform::require(U_SUCCESS(status), "ICU has no data for the segmentation of text");
}

/// Whether no two code units are one character: the first mark that joins a letter is U+0300, and
/// below it only a carriage return joins a line feed. Most texts are such, and making ICU's
/// boundaries costs more than comparing a short one.
bool isEachUnitACharacter(const icu::UnicodeString& text) {
  constexpr char16_t kFirstThatJoins = 0x300;
  for (int i = 0; i < text.length(); ++i) {
    if (text[i] >= kFirstThatJoins || text[i] == u'\r') return false;
  }
  return true;
}

std::unique_ptr<icu::BreakIterator> characterBoundaries() {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::BreakIterator> boundaries(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  requireData(status);
  return boundaries;
}

/// Splits texts into characters and numbers them: the same number for canonically equivalent ones,
/// so that comparing them costs no more than comparing numbers.
class Segmenter {
 public:
  Segmenter() {
    UErrorCode status = U_ZERO_ERROR;
    decomposition_ = icu::Normalizer2::getNFDInstance(status);
    requireData(status);
  }

  std::vector<Character> split(const std::string& utf8) {
    const icu::UnicodeString text = icu::UnicodeString::fromUTF8(utf8);
    std::vector<Character> result;
    result.reserve(static_cast<std::size_t>(text.length()));
    if (isEachUnitACharacter(text)) {
      for (int i = 0; i < text.length(); ++i)
        result.push_back({numberOf(text, i, i + 1), 1});
      return result;
    }
    if (!boundaries_) boundaries_ = characterBoundaries();
    boundaries_->setText(text);
    for (int start = 0, end = boundaries_->next(); end != icu::BreakIterator::DONE;
         start = end, end = boundaries_->next()) {
      result.push_back({numberOf(text, start, end), end - start});
    }
    return result;
  }

 private:
  int numberOf(const icu::UnicodeString& text, int start, int end) {
    constexpr char16_t kFirstThatDecomposes = 0xC0;
    if (end - start == 1 && text[start] < kFirstThatDecomposes) return text[start];
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString decomposed =
        decomposition_->normalize(text.tempSubStringBetween(start, end), status);
    requireData(status);
    const int next = kFirstThatDecomposes + static_cast<int>(others_.size());
    return others_.emplace(decomposed, next).first->second;
  }

  const icu::Normalizer2* decomposition_ = nullptr;
  std::unique_ptr<icu::BreakIterator> boundaries_;  ///< made for the first text that needs them
  std::map<icu::UnicodeString, int> others_;        ///< by their canonical decomposition
};

/// Pieces between spaces that are not empty. Other white space belongs to its piece.
int countPieces(const std::vector<Character>& text) {
  int pieces = 0;
  bool inside = false;
  for (const Character& character : text) {
    const bool separates = character.number == kSpace;
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
  Segmenter segmenter;
  const std::vector<Character> rows = segmenter.split(a);
  const std::vector<Character> columns = segmenter.split(b);
  std::vector<int> last(columns.size() + 1);
  std::vector<int> current(columns.size() + 1);
  std::iota(last.begin(), last.end(), 0);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    current[0] = static_cast<int>(i) + 1;
    for (std::size_t j = 0; j < columns.size(); ++j) {
      current[j + 1] = sameCharacter(rows[i], columns[j])
                           ? last[j]
                           : std::min({last[j], last[j + 1], current[j]}) + 1;
    }
    std::swap(last, current);
  }
  return last.back();
}

std::size_t characterCount(const std::string& text) {
  return Segmenter().split(text).size();
}

bool hasPrefixDroppingLast(const std::string& text, const std::string& prefix,
                           std::size_t dropped) {
  Segmenter segmenter;
  std::vector<Character> wanted = segmenter.split(prefix);
  platform::require(wanted.size() >= dropped,
                    "the document type \"" + prefix + "\" is too short to name a family");
  wanted.resize(wanted.size() - dropped);
  const std::vector<Character> given = segmenter.split(text);
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
  Segmenter segmenter;
  std::vector<Character> remaining = segmenter.split(lowercased(text));
  const int writtenWords = countPieces(remaining);
  SpokenWordMatch match;
  for (const std::string& spoken : spokenWords) {
    const std::vector<Character> word = segmenter.split(spoken);
    const auto first =
        std::search(remaining.begin(), remaining.end(), word.begin(), word.end(), sameCharacter);
    if (word.empty() || first == remaining.end()) continue;
    const auto end = first + static_cast<std::ptrdiff_t>(word.size());
    const MatchRange range{lengthOf(remaining.begin(), first), lengthOf(first, end)};
    match.ranges.push_back(range);
    // As many spaces as there were code units, so that later positions stay what they were.
    remaining.insert(remaining.erase(first, end), static_cast<std::size_t>(range.length),
                     {kSpace, 1});
  }
  match.percentage = static_cast<float>(match.ranges.size()) / static_cast<float>(writtenWords);
  return match;
}

}  // namespace corvana::capture
