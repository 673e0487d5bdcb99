#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "app/CaptureCommand.h"
#include "app/Files.h"
#include "app/Reference.h"

namespace app {

/// All that a run is given, checked before anything is recorded.
struct CaptureInputs {
  Reference reference;
  std::string text;
  MediaOpener openMedia;
  std::filesystem::path folder;  ///< of the run: free, but not made yet
};

/// Also sets the options of the options file. The error is one sentence.
Expected<CaptureInputs> checkInputs(const CaptureArguments& arguments);

/// Longer than anyone reads aloud in ten minutes.
inline constexpr std::size_t kMaxTextBytes = 8000;

}  // namespace app
