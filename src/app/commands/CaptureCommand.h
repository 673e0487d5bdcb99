#pragma once

#include <CLI/CLI.hpp>

#include "app/run/ExitCode.h"

namespace corvana::app {

/// `videoid capture`: one video identification, from a reference and a camera to a judged film.
/// Result as JSON on standard output, progress on standard error. `exitCode` is set when it runs.
void addCaptureCommand(CLI::App& app, ExitCode& exitCode);

}  // namespace corvana::app
