#include "app/report/TextDifference.h"

#include <algorithm>

#include <dtl/dtl.hpp>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace corvana::app {
namespace {

using icu::UnicodeString;

/// No card holds more, and comparing takes time by the square of it.
constexpr std::size_t kMostCharacters = 4000;

struct Characters {
  std::vector<UChar32> letters;   ///< without ends of lines
  std::vector<std::size_t> ends;  ///< after how many letters each line ends
};

Characters charactersOf(const std::vector<std::string>& lines) {
  Characters all;
  for (const std::string& line : lines) {
    const auto text = UnicodeString::fromUTF8(line);
    for (int i = 0; i < text.length() && all.letters.size() < kMostCharacters;
         i = text.moveIndex32(i, 1)) {
      all.letters.push_back(text.char32At(i));
    }
    all.ends.push_back(all.letters.size());
  }
  return all;
}

void add(TextPieces& pieces, UChar32 letter, bool marked) {
  if (pieces.empty() || pieces.back().marked != marked) pieces.push_back({{}, marked});
  UnicodeString(letter).toUTF8String(pieces.back().text);
}

TextPieces inLines(const Characters& characters, const std::vector<bool>& marks) {
  TextPieces pieces;
  std::size_t at = 0;
  for (std::size_t line = 0; line < characters.ends.size(); ++line) {
    if (line > 0) add(pieces, '\n', false);
    for (; at < characters.ends[line]; ++at)
      add(pieces, characters.letters[at], marks[at]);
  }
  return pieces;
}

std::vector<bool> unitsIn(const std::vector<capture::MatchRange>& ranges, int length) {
  std::vector<bool> units(static_cast<std::size_t>(length), false);
  for (const capture::MatchRange& range : ranges) {
    const auto begin = std::clamp<long>(range.location, 0, length);
    const auto end = std::clamp<long>(long{range.location} + range.length, begin, length);
    std::fill(units.begin() + begin, units.begin() + end, true);
  }
  return units;
}

}  // namespace

TextDifference compareTexts(const std::vector<std::string>& first,
                            const std::vector<std::string>& second) {
  const Characters one = charactersOf(first);
  const Characters other = charactersOf(second);
  dtl::Diff<UChar32, std::vector<UChar32>> diff(one.letters, other.letters);
  diff.compose();
  std::vector<bool> deleted, added;
  for (const auto& [letter, step] : diff.getSes().getSequence()) {
    if (step.type != dtl::SES_ADD) deleted.push_back(step.type == dtl::SES_DELETE);
    if (step.type != dtl::SES_DELETE) added.push_back(step.type == dtl::SES_ADD);
  }
  const auto count = std::ranges::count(deleted, true) + std::ranges::count(added, true);
  return {inLines(one, deleted), inLines(other, added), static_cast<std::size_t>(count),
          deleted.size() + added.size()};
}

TextPieces markRanges(const std::string& text, const std::vector<capture::MatchRange>& ranges) {
  const auto unicode = UnicodeString::fromUTF8(text);
  const auto units = unitsIn(ranges, unicode.length());
  TextPieces pieces;
  for (int i = 0; i < unicode.length(); i = unicode.moveIndex32(i, 1))
    add(pieces, unicode.char32At(i), units[static_cast<std::size_t>(i)]);
  return pieces;
}

std::vector<std::string> wordsWithoutMark(const std::string& text,
                                          const std::vector<capture::MatchRange>& ranges) {
  const auto unicode = UnicodeString::fromUTF8(text);
  const auto units = unitsIn(ranges, unicode.length());
  std::vector<std::string> missed;
  std::string word;
  bool hasLetter = false, isMarked = false;
  const auto endWord = [&] {
    if (hasLetter && !isMarked) missed.push_back(word);
    word.clear();
    hasLetter = isMarked = false;
  };
  for (int i = 0; i < unicode.length(); i = unicode.moveIndex32(i, 1)) {
    const UChar32 letter = unicode.char32At(i);
    if (u_isUWhiteSpace(letter)) {
      endWord();
      continue;
    }
    UnicodeString(letter).toUTF8String(word);
    hasLetter = hasLetter || u_isalnum(letter);
    isMarked = isMarked || units[static_cast<std::size_t>(i)];
  }
  endWord();
  return missed;
}

}  // namespace corvana::app
