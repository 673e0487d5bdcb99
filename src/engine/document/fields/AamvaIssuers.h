#pragma once

#include <optional>
#include <string_view>

namespace corvana::engine {

/// Who issues under a number of the AAMVA's list.
struct AamvaIssuer {
  std::string_view number;
  std::string_view jurisdiction;
  bool isCanadian = false;
};

std::optional<AamvaIssuer> aamvaIssuer(std::string_view number);

}  // namespace corvana::engine
