#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "devices/scripted/PatternFaces.h"

namespace corvana::tests {

/// A picture of one colour, 160×160.
inline platform::UIImageRef flatImage(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
  std::vector<std::uint8_t> bytes;
  for (int i = 0; i < 160 * 160; ++i)
    bytes.insert(bytes.end(), {red, green, blue});
  return std::make_shared<platform::UIImage>(std::make_shared<platform::PixelBuffer>(
      160, 160, platform::PixelFormat::rgb24, std::move(bytes)));
}

/// Faces for tests, 0 and 1: equal numbers give equal pictures in new objects.
inline platform::UIImageRef faceImage(int person) {
  return devices::patternFace(person);
}

}  // namespace corvana::tests
