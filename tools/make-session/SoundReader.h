#pragma once

#include <filesystem>
#include <vector>

#include "Result.h"

namespace corvana::session {

/// All of a sound file, one channel of the given samples per second, −1 to 1.
Result<std::vector<float>> readSound(const std::filesystem::path& file, int rate);

}  // namespace corvana::session
