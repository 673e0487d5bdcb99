#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include <nlohmann/json.hpp>

#include "platform/foundation/Fault.h"

/// Files that people write, of any bytes.
namespace corvana::engine {

/// A name or path as a sentence can have it: in quotes and on one line, whatever its bytes.
std::string inQuotes(const std::string& name);

/// Refuses folders, missing files and files of more than `maxBytes`.
platform::Expected<std::string> readFile(const std::filesystem::path& path, std::uint64_t maxBytes);

/// Parses JSON text; refuses what is nested deeper than 64 levels, and keys named twice.
platform::Expected<nlohmann::json> parseJson(const std::string& text, const std::string& name);

}  // namespace corvana::engine
