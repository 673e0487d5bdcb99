#pragma once

#include <string>
#include <utility>
#include <vector>

#include "capture/TextMatching.h"

/// Texts cut into stretches to be marked. Pure.
namespace corvana::app {

struct TextPiece {
  std::string text;
  bool marked = false;
  bool operator==(const TextPiece&) const = default;
};
using TextPieces = std::vector<TextPiece>;

struct TextDifference {
  TextPieces first, second;
  std::size_t differing = 0;  ///< marked characters of both
  std::size_t all = 0;        ///< characters of both
};

/// Marks the characters of each text that the other one does not have in its place. Where lines
/// end counts for nothing, as in the comparison of cards.
TextDifference compareTexts(const std::vector<std::string>& first,
                            const std::vector<std::string>& second);

/// Marks stretches, counted in UTF-16 code units; those beyond the text are cut.
TextPieces markRanges(const std::string& text, const std::vector<capture::MatchRange>& ranges);

/// The words, as blanks part them, of which no letter is marked.
std::vector<std::string> wordsWithoutMark(const std::string& text,
                                          const std::vector<capture::MatchRange>& ranges);

}  // namespace corvana::app
