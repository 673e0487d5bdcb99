#pragma once

#include <cstdint>

namespace corvana::platform {

using SystemSoundID = std::uint32_t;

/// Signals an accepted step; a vibration on a phone.
inline constexpr SystemSoundID kSystemSoundVibrate = 4095;

class SystemSounds {
 public:
  virtual ~SystemSounds() = default;
  /// Main queue; returns at once.
  virtual void play(SystemSoundID sound) = 0;
};

}  // namespace corvana::platform
