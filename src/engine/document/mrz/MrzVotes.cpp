#include "engine/document/mrz/MrzVotes.h"

#include <algorithm>

#include "engine/document/mrz/MrzRepair.h"

namespace corvana::engine {
namespace {

/// A character needs this many times the votes of the next one.
constexpr double kClearMajority = 1.5;

/// The winner's character; absent while it is contested.
std::optional<char> winner(const std::map<char, double>& place) {
  const auto best = std::ranges::max_element(
      place, [](const auto& a, const auto& b) { return a.second < b.second; });
  for (auto other = place.begin(); other != place.end(); ++other) {
    if (other != best && best->second < kClearMajority * other->second) return std::nullopt;
  }
  return best->first;
}

}  // namespace

void MrzVotes::add(const std::vector<MrzPrint>& lines) {
  std::vector<std::string> texts;
  for (const MrzPrint& line : lines)
    texts.push_back(line.text);
  std::vector<MrzCandidate> candidates = mrzCandidates(texts);
  if (candidates.empty()) return;
  MrzCandidate seen = std::move(candidates.front());
  if (const auto whole = readMrz(texts)) {
    const auto before = result();
    if (before && before->documentNumber != whole->documentNumber) *this = {};
    seen.lines = whole->lines;
  } else if (candidates.size() > 1) {
    return;  // where its fillers stand is open: its characters would vote for their neighbours
  }
  if (layout_ != seen.layout) {
    layout_ = seen.layout;
    places_.assign(layout_->lineCount, std::vector<Place>(layout_->lineLength));
  }
  for (std::size_t line = 0; line < seen.lines.size(); ++line) {
    for (std::size_t column = 0; column < layout_->lineLength; ++column)
      places_[line][column][seen.lines[line][column]] += lines[line].confidence;
  }
}

std::optional<corvana::MRZResult> MrzVotes::result() const {
  if (layout_ == nullptr) return std::nullopt;
  std::vector<std::string> lines;
  for (const auto& line : places_) {
    lines.emplace_back();
    for (const Place& place : line) {
      const auto letter = winner(place);
      if (!letter) return std::nullopt;
      lines.back() += *letter;
    }
  }
  auto mrz = readMrz(lines);
  if (!mrz) return std::nullopt;
  return *std::move(mrz);
}

}  // namespace corvana::engine
