#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/run/ExitCode.h"
#include "app/run/Resources.h"
#include "platform/geometry/Geometry.h"

namespace corvana::app {

struct ScreensOptions {
  std::filesystem::path folder;  ///< where the pictures go
  std::vector<platform::CGSize> sizes{{360, 640}, {768, 1024}, {1280, 720}};
  /// Empty: the standard theme and the sample theme.
  std::vector<std::filesystem::path> themes;
  std::string language = "en";
  Resources resources;
};

/// Takes a picture of every state of the flow, as THEME-WIDTHxHEIGHT-STATE.png, and names them on
/// `out`; the same pictures each time on the same machine. Writes the host's static tables.
ExitCode runScreens(const ScreensOptions& options, std::ostream& out, std::ostream& err);

/// `videoid screens`; sets `exitCode` when it runs.
void addScreensCommand(CLI::App& app, ExitCode& exitCode);

}  // namespace corvana::app
