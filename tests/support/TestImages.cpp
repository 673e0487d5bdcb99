#include "support/TestImages.h"

#include <utility>
#include <vector>

#include "devices/scripted/PatternFaces.h"

namespace tests {
namespace {

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
  return devices::patternFace(person);
}

}  // namespace tests
