#pragma once

#include <filesystem>
#include <system_error>

#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// Why a file can't be read, as a sentence; `error` is what the system says.
tl::unexpected<platform::Fault> unreadable(const std::filesystem::path& path,
                                           const std::error_code& error);

}  // namespace corvana::engine
