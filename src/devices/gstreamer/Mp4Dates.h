#pragma once

#include <filesystem>
#include <string>

#include <tl/expected.hpp>

#include "platform/foundation/Fault.h"

namespace devices {

/// Sets the creation and modification dates in a finished MP4 file to "unknown" and clears its
/// unused space, so that its bytes depend on nothing but picture and sound.
tl::expected<void, platform::Fault> clearDates(const std::filesystem::path& path);

}  // namespace devices
