#include "app/settings/ColorTable.h"

#include <charconv>

namespace corvana::app {

std::optional<platform::UIColor> parseColor(const std::string& text) {
  if ((text.size() != 7 && text.size() != 9) || text[0] != '#') return {};
  std::array<int, 4> parts{0, 0, 0, 255};
  for (std::size_t i = 1; i < text.size(); i += 2) {
    const char* end = text.data() + i + 2;
    if (std::from_chars(text.data() + i, end, parts[i / 2], 16).ptr != end) return {};
  }
  return platform::UIColor{parts[0] / 255.0, parts[1] / 255.0, parts[2] / 255.0, parts[3] / 255.0};
}

}  // namespace corvana::app
