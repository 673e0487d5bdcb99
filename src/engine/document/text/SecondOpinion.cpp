#include "engine/document/text/SecondOpinion.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "engine/document/fields/EditDistance.h"
#include "engine/document/fields/Transliteration.h"
#include "engine/document/fields/ValueAgreement.h"
#include "engine/document/text/TextLines.h"

namespace corvana::engine {
namespace {

constexpr double kDoubtful = 0.8;
constexpr double kSure = 0.85;
/// Of a line of which the first is this unsure hardly a letter need be right.
constexpr double kHardlyRead = 0.8;
/// Of so many letters one may differ by more than its accents.
constexpr std::size_t kLettersPerDifference = 5;

bool isTheSameText(const std::string& first, const std::string& second) {
  const std::string a = letterSkeleton(first);
  const std::string b = letterSkeleton(second);
  return editDistance(a, b) <= std::max(a.size(), b.size()) / kLettersPerDifference;
}

/// An O with a dot below, which the first reader does not know, is a Q to it, and a sure one.
bool mayHaveADotBelow(const std::string& text) {
  return text.find('Q') != std::string::npos;
}

bool isBetter(const TextLine& second, const TextLine& first) {
  if (mayHaveADotBelow(first.text) && isLikeWhereMarked(second.text, first.text)) return true;
  return first.leastConfidence < kDoubtful && second.confidence >= kSure &&
         (first.confidence < kHardlyRead || isTheSameText(first.text, second.text));
}

/// Names and numbers are among the larger print of a card; labels, which are smaller, would pass
/// for values where they are misread.
double heightOfValues(const std::vector<TextLine>& lines) {
  constexpr double kSmaller = 0.75;  // of the lines
  constexpr double kLeast = 0.8;
  std::vector<double> heights;
  for (const TextLine& line : lines)
    heights.push_back(line.box.height);
  if (heights.empty()) return 0;
  const auto rank =
      heights.begin() + static_cast<std::ptrdiff_t>(kSmaller * double(heights.size() - 1));
  std::ranges::nth_element(heights, rank);
  return kLeast * *rank;
}

/// The places of values of which the first reader made nothing.
std::vector<TextLine> unreadValues(const std::vector<TextLine>& places,
                                   const std::vector<TextLine>& lines) {
  std::vector<TextLine> unread;
  const double least = heightOfValues(lines);
  std::ranges::copy_if(places, std::back_inserter(unread), [&](const TextLine& place) {
    return place.box.height >= least && !runsUpOrDown(place) && !isAmong(lines, place.box);
  });
  return unread;
}

}  // namespace

std::vector<TextLine> withSecondOpinion(const platform::PixelBuffer& card,
                                        std::vector<TextLine> lines,
                                        const std::vector<TextLine>& places, TextReader& second) {
  const std::vector<TextLine> unread = unreadValues(places, lines);
  for (TextLine& line : lines) {
    if (line.leastConfidence >= kDoubtful && !mayHaveADotBelow(line.text)) continue;
    const auto again = second.readAgain(card, {line});
    if (again.empty() || !isBetter(again.front(), line)) continue;
    auto words = std::move(line.words);
    auto others = std::move(line.others);
    line = again.front();
    line.words = std::move(words);
    line.others = std::move(others);
  }
  std::ranges::move(second.readAgain(card, unread), std::back_inserter(lines));
  sortFromTop(lines);
  return lines;
}

}  // namespace corvana::engine
