#pragma once

#include <functional>
#include <string>

#include <CLI/CLI.hpp>

#include "Result.h"

namespace corvana::session {

/// A program of one job.
struct Tool {
  std::string name;
  std::string description;
  std::function<void(CLI::App&)> addOptions;
  std::function<Result<void>()> run;  ///< after the words of the command line were taken
};

/// Reads the command line and does the job; faults are told on standard error. What main returns: 0
/// when it is done, 1 after a fault, 2 when the words were wrong.
int runTool(const Tool& tool, int argc, char** argv);

}  // namespace corvana::session
