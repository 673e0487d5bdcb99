#pragma once

#include <algorithm>
#include <cstddef>

#include "engine/selfie/MouthLook.h"

namespace corvana::tests {

/// An even face whose mouth is open, and so dark, over a part of the patch's height.
inline engine::MouthLook openMouth(double part) {
  engine::MouthLook look;
  look.skin.fill(1);
  look.lips.fill(1);
  const auto dark = static_cast<std::size_t>(part * engine::MouthLook::kLipsHeight);
  std::fill_n(look.lips.begin(), dark * engine::MouthLook::kLipsWidth, 0.4F);
  return look;
}

}  // namespace corvana::tests
