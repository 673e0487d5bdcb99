#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Design.h"
#include "Random.h"
#include "Script.h"

namespace corvana::photos {

/// Invented names of one language, and the code of the state whose nationals bear them.
struct NameList {
  std::string language;
  std::string nationality;
  std::vector<std::string> surnames, female, male, places, streets;
};

Result<std::vector<NameList>> readNames(const std::filesystem::path& file);

/// The names of one language; those of the first list when there is none of it.
const NameList& namesIn(const std::vector<NameList>& names, const std::string& language);

/// Draws a holder for a card of the design: names of one of its languages, a number of its pattern,
/// dates that fit each other. The state is Utopia always.
session::CardData drawHolder(const Design& design, const std::vector<NameList>& names,
                             session::Random& random);

/// Text in capitals, as the language writes them (the Turkish i keeps its dot).
std::string capitals(const std::string& text, const std::string& language);

/// One of a list, evenly.
template <typename T>
const T& drawFrom(const std::vector<T>& list, session::Random& random) {
  return list[static_cast<std::size_t>(random.uniform(0.0, static_cast<double>(list.size())))];
}

}  // namespace corvana::photos
