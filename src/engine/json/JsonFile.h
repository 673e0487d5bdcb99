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

/// Refuses folders, pipes, missing files and files of more than `maxBytes`.
platform::Expected<std::string> readFile(const std::filesystem::path& path, std::uint64_t maxBytes);
/// Takes a pipe as well, as a shell's <(command) is one. Only for what the user names and is read
/// once: a pipe gives its bytes one time, and one in a stranger's folder would be waited for.
platform::Expected<std::string> readFileOrPipe(const std::filesystem::path& path,
                                               std::uint64_t maxBytes);

/// Parses JSON text; refuses what is nested deeper than 64 levels, and keys named twice.
platform::Expected<nlohmann::json> parseJson(const std::string& text, const std::string& name);

}  // namespace corvana::engine
