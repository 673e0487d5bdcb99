#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>

#include <tl/expected.hpp>

#include "platform/foundation/Fault.h"

namespace devices {

/// When a film was begun (UTC, to the second); absent where time is virtual.
using CreationTime = std::optional<std::chrono::system_clock::time_point>;
/// Asked at a film's first frame.
using WallClock = std::function<CreationTime()>;

/// Sets the creation and modification dates in a finished MP4 file; absent: to "unknown", so that
/// its bytes depend on nothing but picture and sound.
tl::expected<void, platform::Fault> setDates(const std::filesystem::path& path,
                                             const CreationTime& date);

}  // namespace devices
