#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>

namespace corvana::devices {

/// When a film was begun (UTC, to the second); absent where time is virtual.
using CreationTime = std::optional<std::chrono::system_clock::time_point>;
/// Answers what time it is; asked at a film's first frame.
using WallClock = std::function<CreationTime()>;

/// Sets the creation and modification dates in a finished MP4 file; absent: to "unknown", so that
/// its bytes depend on nothing but picture and sound. False when the file is damaged or can't be
/// written.
bool setDates(const std::filesystem::path& path, const CreationTime& date);

}  // namespace corvana::devices
