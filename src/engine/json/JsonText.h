#pragma once

#include <string>

#include <nlohmann/json.hpp>

/// JSON as text. Names of folders, files and cameras may be of any bytes: what is no UTF-8 becomes
/// U+FFFD, where the library by itself throws.
namespace corvana::engine {

/// On one line, without its end.
template <class Json>
std::string compactJson(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// Indented, without the end of the last line.
template <class Json>
std::string indentedJson(const Json& value) {
  return value.dump(2, ' ', false, Json::error_handler_t::replace);
}

}  // namespace corvana::engine
