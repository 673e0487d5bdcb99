#include "support/TestImages.h"

#include <utility>
#include <vector>

namespace tests {
namespace {

constexpr int kFaceSide = 160;

platform::UIImageRef rgbImage(int width, int height, std::vector<std::uint8_t> bytes) {
  return std::make_shared<platform::UIImage>(std::make_shared<platform::PixelBuffer>(
      width, height, platform::PixelFormat::rgb24, std::move(bytes)));
}

}  // namespace

platform::UIImageRef flatImage(std::uint8_t red, std::uint8_t green, std::uint8_t blue, int width,
                               int height) {
  std::vector<std::uint8_t> bytes;
  for (int i = 0; i < width * height; ++i)
    bytes.insert(bytes.end(), {red, green, blue});
  return rgbImage(width, height, std::move(bytes));
}

platform::UIImageRef faceImage(int person) {
  // Halves of opposite brightness, split another way for each person: whitening the picture, which
  // the face model does, leaves them apart.
  std::vector<std::uint8_t> bytes;
  for (int y = 0; y < kFaceSide; ++y) {
    for (int x = 0; x < kFaceSide; ++x) {
      const int column = x * 4 / kFaceSide;
      const int row = y * 4 / kFaceSide;
      const bool bright = ((row * 4 + column) * (person + 1) / 3 + person) % 2 == 0;
      const auto level = static_cast<std::uint8_t>(bright ? 210 : 40);
      bytes.insert(bytes.end(), {level, level, level});
    }
  }
  return rgbImage(kFaceSide, kFaceSide, std::move(bytes));
}

}  // namespace tests
