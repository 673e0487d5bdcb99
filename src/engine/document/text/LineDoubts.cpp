#include "engine/document/text/LineDoubts.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace corvana::engine {

void LineDoubts::add(std::string letter) {
  places_.push_back({std::move(letter), {}});
}

void LineDoubts::addOther(const std::string& letter, float share) {
  Place& place = places_.back();
  if (letter == place.letter) return;
  float& known = place.others[letter];
  known = std::max(known, share);
}

std::vector<std::string> LineDoubts::otherTexts() const {
  struct Change {
    float share;
    std::size_t place;
    const std::string* letter;
  };
  std::vector<Change> changes;
  for (std::size_t i = 0; i < places_.size(); ++i)
    for (const auto& [letter, share] : places_[i].others)
      changes.push_back({share, i, &letter});
  std::ranges::stable_sort(changes, std::ranges::greater{}, &Change::share);

  // Each change by itself and with those before it, as long as there is room.
  using Letters = std::vector<const std::string*>;
  Letters read;
  for (const Place& place : places_)
    read.push_back(&place.letter);
  std::vector<Letters> found{read};
  for (const Change& change : changes) {
    const std::size_t known = found.size();
    for (std::size_t i = 0; i < known && found.size() <= kMostTexts; ++i) {
      if (found[i][change.place] != read[change.place]) continue;
      found.push_back(found[i]);
      found.back()[change.place] = change.letter;
    }
  }
  std::vector<std::string> texts;
  for (auto letters = std::next(found.begin()); letters != found.end(); ++letters) {
    texts.emplace_back();
    for (const std::string* letter : *letters)
      texts.back() += *letter;
  }
  return texts;
}

}  // namespace corvana::engine
