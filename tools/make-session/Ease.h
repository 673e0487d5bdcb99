#pragma once

#include <algorithm>

namespace corvana::session {

/// 0 before `from`, 1 after `to`, in between a start and a stop without a jerk.
inline double ease(double value, double from, double to) {
  if (to <= from) return value < from ? 0.0 : 1.0;
  const double t = std::clamp((value - from) / (to - from), 0.0, 1.0);
  return t * t * t * (t * (6.0 * t - 15.0) + 10.0);
}

/// Rises to 1 within `edge` seconds after `from` and is back at 0 at `to`.
inline double pulse(double value, double from, double to, double edge) {
  return ease(value, from, from + edge) * (1.0 - ease(value, to - edge, to));
}

inline double mix(double a, double b, double share) {
  return a + (b - a) * share;
}

}  // namespace corvana::session
