#pragma once

#include <algorithm>
#include <string_view>

namespace corvana::engine {

/// Whether a text may be the code of a language, as "de" or "smn".
inline bool isLanguageCode(std::string_view text) {
  return (text.size() == 2 || text.size() == 3) &&
         std::ranges::all_of(text, [](char c) { return c >= 'a' && c <= 'z'; });
}

}  // namespace corvana::engine
