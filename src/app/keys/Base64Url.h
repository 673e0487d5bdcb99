#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvana::app {

/// Base 64 with the letters of addresses and without padding, as signatures of the web use it.
std::string toBase64Url(std::string_view bytes);

/// Only what `toBase64Url` makes: text that says the same bytes in another way is refused, so that
/// no character of a signature can be changed unnoticed.
std::optional<std::string> fromBase64Url(std::string_view text);

}  // namespace corvana::app
