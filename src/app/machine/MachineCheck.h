#pragma once

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "app/run/Resources.h"
#include "platform/media/CaptureDevice.h"

namespace corvana::app {

/// One thing that the program needs of the machine.
struct Finding {
  std::string what;
  bool fine = false;
  /// What is wrong and what cures it; empty when fine.
  std::string cure;
};

/// Loads the model that compares faces, and runs it once.
Finding examineFaceModel(const Resources& resources);
/// Looks at media plugins, encoders, language data and fonts.
std::vector<Finding> examineMachine();
/// Looks at models, media plugins, encoders, language data and fonts.
std::vector<Finding> examine(const Resources& resources);

/// Looks whether so many bytes are free at `folder`, which need not exist yet.
Finding diskSpace(const std::filesystem::path& folder, std::uintmax_t bytesNeeded);

/// What a run of so many seconds may take: the film at the bit rate that the camera recommends (the
/// usual one when `camera` is null), twice, since a film is copied when it is completed. Never less
/// than 256 MiB.
std::uintmax_t bytesNeeded(const platform::AVCaptureDevice* camera, double seconds);

/// The cures of all that is wrong, in one sentence; empty when nothing is.
std::string lacks(const std::vector<Finding>& findings);

}  // namespace corvana::app
