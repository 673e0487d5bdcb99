#include "engine/document/text/SecondOpinion.h"

#include <algorithm>
#include <string>

#include "engine/document/fields/EditDistance.h"
#include "engine/document/fields/Transliteration.h"

namespace corvana::engine {
namespace {

constexpr double kDoubtful = 0.8;
constexpr double kSure = 0.85;
/// Of so many letters one may differ by more than its accents.
constexpr std::size_t kLettersPerDifference = 5;

bool isTheSameText(const std::string& first, const std::string& second) {
  const std::string a = letterSkeleton(first);
  const std::string b = letterSkeleton(second);
  return editDistance(a, b) <= std::max(a.size(), b.size()) / kLettersPerDifference;
}

}  // namespace

std::vector<TextLine> withSecondOpinion(const platform::PixelBuffer& card,
                                        std::vector<TextLine> lines, TextReader& second) {
  for (TextLine& line : lines) {
    if (line.leastConfidence >= kDoubtful) continue;
    const auto again = second.readAgain(card, {line});
    if (again.empty() || again.front().confidence < kSure) continue;
    if (!isTheSameText(line.text, again.front().text)) continue;
    auto words = std::move(line.words);
    auto others = std::move(line.others);
    line = again.front();
    line.words = std::move(words);
    line.others = std::move(others);
  }
  return lines;
}

}  // namespace corvana::engine
