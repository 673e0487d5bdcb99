#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "app/run/CaptureArguments.h"
#include "app/run/Files.h"
#include "app/run/Reference.h"

namespace corvana::app {

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
inline constexpr std::size_t kMostTextBytes = 8000;

}  // namespace corvana::app
