#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace corvana::app {

/// Wall-clock time to the second, as records and keys files write it: 2026-03-01T12:00:00Z.
using UtcTime = std::chrono::sys_seconds;

std::string formatUtc(UtcTime time);
/// Absent for any other form and for times that no calendar has.
std::optional<UtcTime> parseUtc(std::string_view text);

}  // namespace corvana::app
