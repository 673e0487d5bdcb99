#pragma once

#include <cstdint>

#include "platform/uikit/UIImage.h"

namespace tests {

/// A picture of one colour.
platform::UIImageRef flatImage(std::uint8_t red, std::uint8_t green, std::uint8_t blue,
                               int width = 160, int height = 160);

/// Faces for tests, 0 to 7: equal numbers give equal pictures in new objects, different numbers
/// clearly different ones.
platform::UIImageRef faceImage(int person);

}  // namespace tests
