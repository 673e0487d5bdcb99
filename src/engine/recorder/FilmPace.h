#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/foundation/Time.h"

namespace corvana::engine {

/// Chooses the pictures that the film takes when the encoder does not keep up: fewer ones, evenly
/// spread, so that no hole of a second or more comes into the film. Not safe from two threads but
/// for `leftOut`.
class FilmPace {
 public:
  /// Whether the film takes the picture of `time`, with so many others in front of the encoder.
  bool takes(platform::TimePoint time, int waiting);
  /// Pictures a second at most; absent while all are taken.
  std::optional<int> limit() const;
  /// How many pictures were not taken. Any thread.
  std::uint64_t leftOut() const { return leftOut_; }

  /// Pictures in front of the encoder above which fewer are taken. In virtual time no film lets so
  /// many wait.
  static constexpr int kMostWaiting = 20;
  static constexpr int kWaitingWhenDrained = 3;
  /// Below ten a second a reviewer can no longer follow the movement of lips and hands.
  static constexpr std::array<int, 2> kLimits{15, 10};

 private:
  void adapt(platform::TimePoint time, int waiting);
  bool isDue(platform::TimePoint time);

  std::size_t level_ = 0;  ///< 0 takes all; 1 and more are places in `kLimits`, counted from one
  std::optional<platform::TimePoint> changed_;
  platform::TimePoint next_{};
  std::atomic<std::uint64_t> leftOut_ = 0;
};

}  // namespace corvana::engine
