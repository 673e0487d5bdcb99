#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>

#include "Angles.h"

namespace corvana::session {

/// Reproducible numbers: the engine's sequence is fixed by the language, the distributions of the
/// standard library are not, so they are made here.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}

  /// Evenly spread in [low, high).
  double uniform(double low, double high) {
    constexpr double kScale = 1.0 / 9007199254740992.0;  // 2^-53
    return low + (high - low) * (static_cast<double>(engine_() >> 11) * kScale);
  }

  /// Standard normal, as the sum of twelve even numbers: no tails beyond six, no platform's log.
  double normal() {
    double sum = -6.0;
    for (int i = 0; i < 12; ++i)
      sum += uniform(0.0, 1.0);
    return sum;
  }

 private:
  std::mt19937_64 engine_;
};

/// A smooth unrest around zero, such as a hand or a head has: four slow sines that never repeat
/// within a session. The value stays within ±1.
class Wobble {
 public:
  /// frequency: of the slowest sine, in hertz.
  Wobble(Random& random, double frequency) {
    for (std::size_t i = 0; i < kTerms; ++i) {
      frequencies_[i] =
          frequency * (1.0 + 0.73 * static_cast<double>(i)) * random.uniform(0.9, 1.1);
      phases_[i] = random.uniform(0.0, kFullTurn);
    }
  }

  double at(double seconds) const {
    double sum = 0.0;
    for (std::size_t i = 0; i < kTerms; ++i)
      sum += kWeights[i] * std::sin(kFullTurn * frequencies_[i] * seconds + phases_[i]);
    return sum;
  }

 private:
  static constexpr std::size_t kTerms = 4;
  static constexpr std::array<double, kTerms> kWeights = {0.45, 0.28, 0.17, 0.10};
  std::array<double, kTerms> frequencies_{};
  std::array<double, kTerms> phases_{};
};

}  // namespace corvana::session
