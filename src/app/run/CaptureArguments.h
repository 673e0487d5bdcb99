#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/card/CalendarDay.h"
#include "app/privacy/RunTerms.h"
#include "app/run/CallerLink.h"
#include "app/run/CameraChoice.h"
#include "app/run/FlowLoop.h"
#include "app/run/FlowScreen.h"
#include "devices/gstreamer/MediaElements.h"
#include "devices/headless/HeadlessPerson.h"
#include "engine/recorder/ScreenPlaces.h"

namespace corvana::app {

/// A flow may take so long, unless it is told otherwise.
inline constexpr double kUsualLimitSeconds = 600;

/// What one video identification is given, from the reference to the folder of its film.
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
  DocumentChoice documents;
  std::optional<std::filesystem::path> key;  ///< that seals the record; absent: nothing does
  std::optional<std::string> sessionId;
  std::optional<std::string> subject;
  devices::PersonHabits habits;
  /// The habits answer the screens, not the person before the window.
  bool personIsVirtual = true;
  double maxDurationSeconds = kUsualLimitSeconds;
  std::optional<std::filesystem::path> consent;  ///< record of what the person agreed to
  bool requiresConsent = false;                  ///< nothing is recorded without it
  std::optional<int> retainDays;                 ///< absent: the run is kept without end
  Remains afterFailure = Remains::all;
  Remains afterCancellation = Remains::nothing;
  /// From which the tasks of the active mode are drawn; absent: from the system's randomness, or
  /// from 0 in media time.
  std::optional<std::uint32_t> challengeSeed;
  CallerLink::Setup caller;  ///< socket -1: the program's caller follows nothing
  /// Numbers that an earlier run drew, which come before those of the seed.
  std::vector<std::uint32_t> drawn;
  /// A voice while the lips rest ends the run, and is not only a hint.
  bool refusesVoiceWithoutLips = false;
  bool keepsEvidence = true;    ///< what was compared, for a reviewer
  bool keepFailedRuns = false;  ///< the films of runs that were retried
  /// False: films are only counted, as there is one already.
  bool recordsFilms = true;
  std::optional<engine::ScreenPlaces> places;  ///< in place of the screen's own
};

}  // namespace corvana::app
