#pragma once

#include <string>
#include <vector>

namespace corvana::engine {

/// A word of a text that is read aloud.
struct ReadingWord {
  std::string spelling;  ///< as written, lower case, UTF-8: what a recogniser reports
  std::string plain;     ///< in ASCII, case kept (it tells an abbreviation): what is pronounced
};

/// Splits UTF-8 text at everything that is not spoken. Apostrophes stay within words, points,
/// commas and colons within numbers ("10,000" is one word, as it is in the text). Any thread.
std::vector<ReadingWord> readingWords(const std::string& text);

}  // namespace corvana::engine
