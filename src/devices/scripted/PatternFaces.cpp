#include "devices/scripted/PatternFaces.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace corvana::devices {
namespace {

constexpr int kSide = 160;
constexpr int kMiddle = kSide / 2;
constexpr std::uint8_t kDark = 40;
constexpr std::uint8_t kBright = 210;

using IsBright = bool (*)(int x, int y);

bool lowerHalf(int, int y) {
  return y >= kMiddle;
}
bool checkerboard(int x, int y) {
  return (x / 8 + y / 8) % 2 == 0;
}
constexpr std::array<IsBright, kPatternFaces> kPatterns = {lowerHalf, checkerboard};

}  // namespace

platform::UIImageRef patternFace(int person) {
  const IsBright isBright = kPatterns.at(static_cast<std::size_t>(person));
  std::vector<std::uint8_t> bytes;
  bytes.reserve(static_cast<std::size_t>(kSide) * kSide * 3);
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x)
      bytes.insert(bytes.end(), 3, isBright(x, y) ? kBright : kDark);
  }
  return std::make_shared<platform::UIImage>(std::make_shared<platform::PixelBuffer>(
      kSide, kSide, platform::PixelFormat::rgb24, std::move(bytes)));
}

}  // namespace corvana::devices
