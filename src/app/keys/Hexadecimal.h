#pragma once

#include <string>
#include <string_view>

namespace corvana::app {

/// Two lower-case digits for each byte.
std::string hexadecimal(std::string_view bytes);

}  // namespace corvana::app
