#include "engine/document/mrz/MrzPrint.h"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string>

#include "engine/document/mrz/MrzRepair.h"

namespace corvana::engine {
namespace {

platform::CGRect unionOf(const platform::CGRect& a, const platform::CGRect& b) {
  const double x = std::min(a.minX(), b.minX());
  const double y = std::min(a.minY(), b.minY());
  return {x, y, std::max(a.maxX(), b.maxX()) - x, std::max(a.maxY(), b.maxY()) - y};
}

/// Of the print that is no zone's.
std::vector<std::string> wordsBeside(const std::vector<TextLine>& print) {
  std::vector<std::string> words;
  for (const TextLine& line : print) {
    if (!mrzLinesAmong({line.text}).empty()) continue;
    std::istringstream stream(line.text);
    words.insert(words.end(), std::istream_iterator<std::string>(stream), {});
  }
  return words;
}

}  // namespace

MrzReading mrzInPrint(const std::vector<TextLine>& print) {
  MrzReading reading;
  std::vector<std::string> texts;
  for (const TextLine& line : print) {
    if (mrzLinesAmong({line.text}).empty()) continue;
    texts.push_back(line.text);
    reading.band = reading.band ? unionOf(*reading.band, line.box) : line.box;
  }
  reading.lines = mrzLinesAmong(texts);
  if (auto mrz = readMrz(reading.lines)) {
    reading.mrz = *std::move(mrz);
  } else {
    reading.mrz = readMrzByPrint(reading.lines, wordsBeside(print));
  }
  return reading;
}

std::vector<MrzPrint> mrzVotesOf(const std::vector<TextLine>& print) {
  std::vector<MrzPrint> votes;
  for (const TextLine& line : print) {
    for (std::string& text : mrzLinesAmong({line.text}))
      votes.push_back({std::move(text), line.confidence});
  }
  return votes;
}

bool isZoneOnItsHead(const std::vector<TextLine>& lines) {
  constexpr std::ptrdiff_t kLeastFillers = 5;
  return std::ranges::any_of(lines, [](const TextLine& line) {
    return std::ranges::count(line.text, '>') >= kLeastFillers;
  });
}

}  // namespace corvana::engine
