#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// How alike two texts are. Pure functions on UTF-8; any thread. A character is a user-perceived
/// one (an extended grapheme cluster); two are equal when they are canonically equivalent.
/// Ill-formed bytes count as U+FFFD.
namespace corvana::capture {

/// The least number of insertions, deletions and substitutions of one character each that turn `a`
/// into `b`. Case, blanks and everything else count.
int levenshteinDistance(const std::string& a, const std::string& b);

std::size_t characterCount(const std::string& text);

/// Whether `text` begins with `prefix` without its last `dropped` characters. Ends the program when
/// `prefix` has fewer.
bool hasPrefixDroppingLast(const std::string& text, const std::string& prefix, std::size_t dropped);

/// Unicode's default lower case, whatever the locale.
std::string lowercased(const std::string& text);

/// Without white space and line breaks at either end.
std::string trimmed(const std::string& text);

/// A stretch of the lower-cased text, in UTF-16 code units.
struct MatchRange {
  int location = 0;
  int length = 0;
  bool operator==(const MatchRange&) const = default;
};

struct SpokenWordMatch {
  std::vector<MatchRange> ranges;  ///< in the order of the words
  /// Matched spoken words per written word: above 1 when several lie inside one written word, NaN
  /// when nothing is written.
  float percentage = 0;
};

/// Looks for each spoken word, lower-cased by the caller, in the text; a stretch of the text is
/// matched at most once. Word boundaries don't matter, since a recogniser splits words as it likes.
SpokenWordMatch matchSpokenWords(const std::vector<std::string>& spokenWords,
                                 const std::string& text);

}  // namespace corvana::capture
