#include "engine/document/SecondOpinion.h"

#include <algorithm>
#include <numeric>
#include <string>

#include "engine/document/fields/Transliteration.h"

namespace corvana::engine {
namespace {

constexpr double kDoubtful = 0.8;
constexpr double kSure = 0.85;
/// Of so many letters one may differ by more than its accents.
constexpr std::size_t kLettersPerDifference = 5;

std::size_t differences(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), 0U);
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t k = 1; k <= b.size(); ++k) {
      const std::size_t above = row[k];
      row[k] = std::min({diagonal + (a[i - 1] == b[k - 1] ? 0U : 1U), above + 1, row[k - 1] + 1});
      diagonal = above;
    }
  }
  return row.back();
}

bool isTheSameText(const std::string& first, const std::string& second) {
  const std::string a = letterSkeleton(first);
  const std::string b = letterSkeleton(second);
  return differences(a, b) <= std::max(a.size(), b.size()) / kLettersPerDifference;
}

}  // namespace

std::vector<TextLine> withSecondOpinion(const platform::PixelBuffer& card,
                                        std::vector<TextLine> lines, TextReader& second) {
  for (TextLine& line : lines) {
    if (line.leastConfidence >= kDoubtful) continue;
    const auto again = second.readAgain(card, {line});
    if (again.empty() || again.front().confidence < kSure) continue;
    if (isTheSameText(line.text, again.front().text)) line = again.front();
  }
  return lines;
}

}  // namespace corvana::engine
