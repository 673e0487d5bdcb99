#pragma once

#include <filesystem>
#include <system_error>

namespace corvana::devices {

/// Blocks until what a file holds, or the names in a folder, are on the disk. Any thread.
std::error_code syncToDisk(const std::filesystem::path& path);

}  // namespace corvana::devices
