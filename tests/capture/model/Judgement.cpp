#include "Judgement.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <utility>

namespace corvana::tests {
namespace {

using Letters = std::vector<std::string>;

/// As a reader counts them: dots belong to the letter below, in whichever way they are written.
Letters lettersOf(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines)
    text += line;
  const std::string apart = "A\u0308";
  for (auto at = text.find(apart); at != std::string::npos; at = text.find(apart))
    text.replace(at, apart.size(), "\u00c4");
  Letters letters;
  for (const char byte : text) {
    const bool goesOn = (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
    if (goesOn) {
      letters.back() += byte;
    } else {
      letters.emplace_back(1, byte);
    }
  }
  return letters;
}

/// The fewest changes that make the first `m` letters of one the first `n` of the other.
int changes(const Letters& one, std::size_t m, const Letters& other, std::size_t n,
            std::map<std::pair<std::size_t, std::size_t>, int>& known) {
  if (m == 0 || n == 0) return static_cast<int>(m + n);
  if (const auto found = known.find({m, n}); found != known.end()) return found->second;
  const int exchanged = changes(one, m - 1, other, n - 1, known) + (one[m - 1] != other[n - 1]);
  const int oneLess =
      std::min(changes(one, m - 1, other, n, known), changes(one, m, other, n - 1, known)) + 1;
  return known[{m, n}] = std::min(exchanged, oneLess);
}

std::string lower(std::string text) {
  for (char& letter : text) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return text;
}

}  // namespace

bool areAlike(const std::vector<std::string>& given, const std::vector<std::string>& live,
              float limit) {
  const Letters one = lettersOf(given);
  const Letters other = lettersOf(live);
  std::map<std::pair<std::size_t, std::size_t>, int> known;
  const double allowed = limit * static_cast<double>(std::max(one.size(), other.size()));
  return changes(one, one.size(), other, other.size(), known) <= allowed;
}

float shareHeard(const std::vector<std::string>& words, const std::string& text,
                 std::vector<platform::NSAttributedString::Run>& marks) {
  std::istringstream written(text);
  int count = 0;
  for (std::string word; written >> word;)
    ++count;
  std::string rest = lower(text);
  for (const std::string& word : words) {
    const auto at = rest.find(lower(word));
    if (word.empty() || at == std::string::npos) continue;
    rest.replace(at, word.size(), word.size(), ' ');
    marks.push_back(
        {static_cast<int>(at), static_cast<int>(word.size()), platform::colors::kYellow});
  }
  return static_cast<float>(marks.size()) / static_cast<float>(count);
}

}  // namespace corvana::tests
