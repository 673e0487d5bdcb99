#pragma once

#include <string_view>

namespace corvana::platform {

/// Where the module's diagnostic lines go; standard error in the program.
class Console {
 public:
  virtual ~Console() = default;
  /// Any thread; adds the line break.
  virtual void print(std::string_view line) = 0;
};

}  // namespace corvana::platform
