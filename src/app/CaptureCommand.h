#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "app/CameraChoice.h"
#include "app/Driver.h"
#include "app/ExitCode.h"
#include "app/FlowScreen.h"
#include "devices/gstreamer/MediaElements.h"
#include "devices/headless/HeadlessPerson.h"

namespace app {

/// A flow may take so long, unless it is told otherwise.
inline constexpr double kUsualLimitSeconds = 600;

/// `videoid capture`: one video identification, from a reference and a camera to a judged film.
struct CaptureArguments {
  std::filesystem::path reference;
  std::optional<std::string> text;
  std::optional<std::filesystem::path> textFile;
  CameraChoice source;
  std::optional<TimeKind> time;      ///< absent: media with a recording and no window, else real
  std::optional<ScreenKind> screen;  ///< absent: a window for a live camera, if possible
  devices::VideoCodecChoice videoCodec = devices::VideoCodecChoice::automatic;
  WindowWishes window;
  std::string language = "en";
  std::optional<std::filesystem::path> theme;
  bool spokenHints = false;
  std::optional<std::filesystem::path> output;
  std::optional<std::filesystem::path> options;
  devices::PersonHabits habits;
  /// The habits answer the screens, not the person before the window.
  bool personIsVirtual = true;
  double maxDurationSeconds = kUsualLimitSeconds;
  bool keep = false;            ///< the folder also of a cancelled run
  bool keepFailedRuns = false;  ///< the films of runs that were retried
};

/// Adds the command; `exitCode` is set when it runs.
void addCaptureCommand(CLI::App& app, ExitCode& exitCode);

/// Result as JSON on standard output, progress on standard error.
ExitCode runCapture(const CaptureArguments& arguments);

}  // namespace app
