#pragma once

#include <string>
#include <string_view>

namespace corvana::app {

/// Base 64 with padding, as pages and their policies write it.
std::string toBase64(std::string_view bytes);

/// 'sha256-…': by it a page's policy allows one style or script, and no other.
std::string policyHash(std::string_view content);

}  // namespace corvana::app
