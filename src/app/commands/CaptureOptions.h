#pragma once

#include <CLI/CLI.hpp>

#include "app/run/CaptureArguments.h"

namespace corvana::app {

/// Adds what `videoid capture` can be told; `arguments` is filled when the command line is read.
void addCaptureOptions(CLI::App& command, CaptureArguments& arguments);

}  // namespace corvana::app
