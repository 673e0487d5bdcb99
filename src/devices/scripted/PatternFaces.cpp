#include "devices/scripted/PatternFaces.h"

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

namespace devices {
namespace {

constexpr int kSide = 160;
constexpr int kCells = 4;  // of a pattern, in each direction
constexpr std::uint8_t kDark = 40;
constexpr std::uint8_t kBright = 210;

// Bit 4 * row + column is set where the cell is bright. Eight of each sixteen are, so all have the
// same mean; any two differ in half of their cells.
constexpr std::array<std::uint16_t, kPatternFaces> kPatterns = {0x00FF, 0x0F0F, 0x3333, 0x5555,
                                                                0x0FF0, 0x3C3C, 0x5A5A, 0x6666};

}  // namespace

platform::UIImageRef patternFace(int person) {
  const std::uint16_t pattern = kPatterns.at(static_cast<std::size_t>(person));
  std::vector<std::uint8_t> bytes;
  bytes.reserve(static_cast<std::size_t>(kSide) * kSide * 3);
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      const int cell = y * kCells / kSide * kCells + x * kCells / kSide;
      bytes.insert(bytes.end(), 3, (pattern >> cell) & 1 ? kBright : kDark);
    }
  }
  return std::make_shared<platform::UIImage>(std::make_shared<platform::PixelBuffer>(
      kSide, kSide, platform::PixelFormat::rgb24, std::move(bytes)));
}

}  // namespace devices
