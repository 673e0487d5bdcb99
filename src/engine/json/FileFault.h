#pragma once

#include <filesystem>
#include <system_error>

#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// What the last call of the system that failed has against it.
std::error_code lastError();

/// Why a file can't be read, as a sentence; `error` is what the system says.
tl::unexpected<platform::Fault> unreadable(const std::filesystem::path& path,
                                           const std::error_code& error);

}  // namespace corvana::engine
