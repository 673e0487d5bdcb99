#pragma once

#include <numbers>

namespace corvana::session {

/// Radians.
inline constexpr double kFullTurn = 2.0 * std::numbers::pi;
inline constexpr double kDegree = std::numbers::pi / 180.0;

}  // namespace corvana::session
