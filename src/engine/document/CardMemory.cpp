#include "engine/document/CardMemory.h"

#include <algorithm>

namespace corvana::engine {
namespace {

/// Of the lines known from an earlier picture so many are read again on the same card.
constexpr double kLeastShareReadAgain = 0.8;
/// So often in a row settled print that has not changed is taken as read.
constexpr int kMostRepeats = 4;
/// A line all of whose letters are this sure would be read alike again.
constexpr double kSureLetter = 0.9;

}  // namespace

bool CardMemory::repeatsFor(bool looksAsRead) {
  const bool mayRepeat = looksAsRead && !hasOpenZone && repeats < kMostRepeats;
  repeats = mayRepeat ? repeats + 1 : 0;
  return mayRepeat;
}

bool CardMemory::isSettled(const TextLine& line) const {
  return line.leastConfidence >= kSureLetter ||
         std::ranges::find(confirmed, line.text) != confirmed.end();
}

bool CardMemory::isOf(const std::vector<TextLine>& readAgain) const {
  return static_cast<double>(readAgain.size()) >=
         kLeastShareReadAgain * static_cast<double>(lines.size());
}

void CardMemory::confirmBy(const std::vector<TextLine>& readAgain) {
  confirmed.clear();
  for (const TextLine& line : readAgain) {
    if (std::ranges::find(lines, line.text, &TextLine::text) != lines.end())
      confirmed.push_back(line.text);
  }
}

void CardMemory::unsettle() {
  repeats = 0;
  confirmed.clear();
}

}  // namespace corvana::engine
