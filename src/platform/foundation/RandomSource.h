#pragma once

#include <cstdint>
#include <random>

namespace corvana::platform {

/// Where numbers come from that nobody should foresee, or that a replay wants again. Main queue.
class RandomSource {
 public:
  virtual ~RandomSource() = default;
  /// Each of all 32 bits is as likely 0 as 1.
  virtual std::uint32_t next() = 0;
};

/// The same numbers for the same seed, on every machine.
class SeededRandom final : public RandomSource {
 public:
  explicit SeededRandom(std::uint32_t seed) : engine_(seed) {}
  std::uint32_t next() override { return static_cast<std::uint32_t>(engine_()); }

 private:
  std::mt19937 engine_;
};

}  // namespace corvana::platform
