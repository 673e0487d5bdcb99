#pragma once

#include <array>
#include <cstddef>

#include "engine/vision/FaceLandmarks.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::engine {

/// What a mouth, and the skin between it and the eyes, look like: grey values of patches that lie
/// at fixed places of the face, each divided by its mean, so that light does not count.
struct MouthLook {
  static constexpr std::size_t kLipsWidth = 24;
  static constexpr std::size_t kLipsHeight = 18;
  static constexpr std::size_t kSkinWidth = 24;
  static constexpr std::size_t kSkinHeight = 12;

  std::array<float, kLipsWidth * kLipsHeight> lips{};
  std::array<float, kSkinWidth * kSkinHeight> skin{};
};

/// Of the face whose points these are. The patches follow the corners of the eyes and the nose,
/// which stay where they are when the jaw moves.
MouthLook mouthLook(const platform::PixelBuffer& picture, const FaceMesh& mesh);

/// Mean differences of two looks, as parts of the patches' brightness. The skin's tells how well
/// both pictures could be laid on each other at all.
struct MouthChange {
  double lips = 0;
  double skin = 0;
};
MouthChange changeBetween(const MouthLook& a, const MouthLook& b);

}  // namespace corvana::engine
