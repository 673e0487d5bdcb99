#pragma once

#include <filesystem>
#include <string>

#include <tl/expected.hpp>

#include "app/run/ExitCode.h"

namespace corvana::app {

/// Writes a run's folder as a tar archive that only `recipient` can open: a public key of `age`, an
/// SSH key, or a file of several. Replaces no file. Blocks.
tl::expected<void, Refusal> exportRun(const std::filesystem::path& folder,
                                      const std::string& recipient,
                                      const std::filesystem::path& archive);

}  // namespace corvana::app
