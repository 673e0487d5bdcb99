#include "support/TestImages.h"

#include <array>
#include <utility>
#include <vector>

namespace tests {
namespace {

constexpr int kSide = 160;
constexpr int kCells = 4;  // of a pattern, in each direction
constexpr std::uint8_t kDark = 40;
constexpr std::uint8_t kBright = 210;

// Bit 4 * row + column is set where the cell is bright. Eight of each sixteen are, so all have the
// same mean; any two differ in half of their cells.
constexpr std::array<std::uint16_t, 8> kPatterns = {0x00FF, 0x0F0F, 0x3333, 0x5555,
                                                    0x0FF0, 0x3C3C, 0x5A5A, 0x6666};

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
  const std::uint16_t pattern = kPatterns.at(static_cast<std::size_t>(person));
  std::vector<std::uint8_t> bytes;
  bytes.reserve(static_cast<std::size_t>(kSide) * kSide * 3);
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      const int cell = y * kCells / kSide * kCells + x * kCells / kSide;
      bytes.insert(bytes.end(), 3, (pattern >> cell) & 1 ? kBright : kDark);
    }
  }
  return rgbImage(kSide, kSide, std::move(bytes));
}

}  // namespace tests
