#pragma once

#include <string>

#include <tl/expected.hpp>

namespace corvana::session {

/// The error is one sentence for the user: what is wrong, where, what to do.
template <typename T>
using Result = tl::expected<T, std::string>;

inline tl::unexpected<std::string> fault(std::string sentence) {
  return tl::unexpected<std::string>(std::move(sentence));
}

}  // namespace corvana::session
