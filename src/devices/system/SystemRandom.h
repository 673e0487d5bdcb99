#pragma once

#include <random>

#include "platform/foundation/RandomSource.h"

namespace corvana::devices {

/// The system's own randomness, which nobody can foresee.
class SystemRandom final : public platform::RandomSource {
 public:
  std::uint32_t next() override { return device_(); }

 private:
  std::random_device device_;
};

}  // namespace corvana::devices
