#pragma once

#include <string_view>

namespace corvana::platform {

/// Ends the program with a message on standard error: a promise between programmers was broken
/// (an outlet that the storyboard lacks, a document type too short). Never used for user input.
[[noreturn]] void fatal(std::string_view message);

inline void require(bool condition, std::string_view message) {
  if (!condition) fatal(message);
}

}  // namespace corvana::platform
