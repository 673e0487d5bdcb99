#pragma once

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace corvana::app {

/// The member of a value that may be no object, if it has that type.
std::optional<std::string> textIn(const nlohmann::json& value, const char* key);
std::optional<double> numberIn(const nlohmann::json& value, const char* key);
std::optional<bool> flagIn(const nlohmann::json& value, const char* key);
/// Null where there is none.
const nlohmann::json& memberIn(const nlohmann::json& value, const char* key);
/// Those texts of a list that are texts.
std::vector<std::string> textsIn(const nlohmann::json& value, const char* key);

}  // namespace corvana::app
