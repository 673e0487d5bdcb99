#pragma once

#include <filesystem>
#include <ostream>

#include <CLI/CLI.hpp>

#include "app/run/ExitCode.h"

namespace corvana::app {

struct SimulateOptions {
  std::filesystem::path script;
  /// Folder of the module's resources: face model and drawings.
  std::filesystem::path resources;
};

/// Plays a script before the real module and prints to `out` what the user sees and the caller
/// gets; complaints, one sentence each, go to `err`. Writes the host's static tables.
ExitCode runSimulate(const SimulateOptions& options, std::ostream& out, std::ostream& err);

/// `videoid simulate`; sets `exitCode` when it runs.
void addSimulateCommand(CLI::App& app, ExitCode& exitCode);

}  // namespace corvana::app
