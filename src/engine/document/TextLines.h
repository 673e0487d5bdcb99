#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/geometry/Geometry.h"

namespace corvana::engine {

/// A word as recognised.
struct TextWord {
  std::string text;  ///< UTF-8
  platform::CGRect box;
  double confidence = 0;  ///< 0 to 100
};

/// Characters as a reader counts them in recognised text, where a letter and its accent are one
/// code point. Pure.
std::size_t characterCount(const std::string& text);

/// The words worth keeping (sure ones in the size of the holder's data), in lines from top to
/// bottom and from left to right. Pure.
std::vector<std::string> textLines(const std::vector<TextWord>& words);

}  // namespace corvana::engine
