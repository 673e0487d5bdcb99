#pragma once

#include <filesystem>
#include <vector>

#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// The JSON files of a folder by name, or the file alone where it is one. Error: there is neither,
/// or there are more files than anybody would write.
platform::Expected<std::vector<std::filesystem::path>> dataFilesIn(
    const std::filesystem::path& folderOrFile);

}  // namespace corvana::engine
