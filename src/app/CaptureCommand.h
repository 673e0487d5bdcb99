#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "app/Driver.h"
#include "app/ExitCode.h"
#include "app/FlowScreen.h"
#include "devices/gstreamer/MediaElements.h"
#include "devices/headless/HeadlessPerson.h"

namespace app {

/// `videoid capture`: one video identification, from a reference and a camera to a judged film.
struct CaptureArguments {
  std::filesystem::path reference;
  std::optional<std::string> text;
  std::optional<std::filesystem::path> textFile;
  std::filesystem::path camera;
  std::optional<TimeKind> time;      ///< absent: media without a window, real with one
  std::optional<ScreenKind> screen;  ///< absent: headless, since the camera is a recording
  devices::VideoCodecChoice videoCodec = devices::VideoCodecChoice::automatic;
  WindowWishes window;
  std::string language = "en";
  std::optional<std::filesystem::path> theme;
  std::optional<std::filesystem::path> output;
  std::optional<std::filesystem::path> options;
  devices::PersonHabits habits;
  /// The habits answer the screens, not the person before the window.
  bool personIsVirtual = true;
  double maxDurationSeconds = 600;
  bool keep = false;            ///< the folder also of a cancelled run
  bool keepFailedRuns = false;  ///< the films of runs that were retried
};

/// Adds the command; `exitCode` is set when it runs.
void addCaptureCommand(CLI::App& app, ExitCode& exitCode);

/// Result as JSON on standard output, progress on standard error.
ExitCode runCapture(const CaptureArguments& arguments);

}  // namespace app
