#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "app/Resources.h"

namespace app {

/// One thing that the program needs of the machine.
struct Finding {
  std::string what;
  bool fine = false;
  /// What is wrong and what cures it; empty when fine.
  std::string cure;
};

/// Looks at models, media plugins, encoders, language data, fonts, and the disk space at `folder`.
std::vector<Finding> examine(const Resources& resources, const std::filesystem::path& folder);

/// The cures of all that is wrong, in one sentence; empty when nothing is.
std::string lacks(const std::vector<Finding>& findings);

/// Below this a run is refused: ten minutes of film at the usual bit rate.
inline constexpr std::uintmax_t kLeastFreeBytes = 512ULL * 1024 * 1024;

}  // namespace app
