#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "engine/json/JsonFile.h"
#include "platform/foundation/Fault.h"

namespace corvana::app {

using engine::inQuotes;
using engine::parseJson;
using engine::readFile;
using engine::readFileOrPipe;
using platform::Expected;

/// Replaces the file as a whole, or not at all; readable by its owner only.
Expected<void> writeFile(const std::filesystem::path& path, const std::string& content);

/// Lower-case hexadecimal SHA-256 of the file's bytes.
Expected<std::string> sha256(const std::filesystem::path& path);

/// The SHA-256 of each file by its name, in their order. Files that are not there are left out.
Expected<nlohmann::ordered_json> sumsOf(const std::vector<std::filesystem::path>& files);

/// SHA-256 over the files' names and sums, in their order.
Expected<std::string> sumOver(const std::vector<std::filesystem::path>& files);

/// Refuses what can't become a run's folder: a file, a folder that is not empty or not writable.
Expected<void> checkEmptyFolder(const std::filesystem::path& path);

/// Makes the folder for its owner only, or takes an existing one that is empty and writable, and
/// makes an empty file `first` in it: of several that take a folder at the same time one gets it.
Expected<void> takeFolder(const std::filesystem::path& path, const char* first);

/// Blocks until the folder's names and what its files hold are on the disk, so that a power loss
/// leaves them as they are.
Expected<void> putOnDisk(const std::filesystem::path& folder);

}  // namespace corvana::app
