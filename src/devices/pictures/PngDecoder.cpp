#include "devices/pictures/PngDecoder.h"

#include <cstdint>
#include <utility>
#include <vector>

#include <png.h>

namespace corvana::devices {
namespace {

constexpr std::size_t kColors = 3;

std::vector<std::uint8_t> withoutAlpha(const std::vector<std::uint8_t>& rgba) {
  std::vector<std::uint8_t> rgb;
  rgb.reserve(rgba.size() / (kColors + 1) * kColors);
  for (auto pixel = rgba.begin(); pixel != rgba.end(); pixel += kColors + 1)
    rgb.insert(rgb.end(), pixel, pixel + kColors);
  return rgb;
}

}  // namespace

platform::PixelBufferRef decodePng(std::string_view bytes) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) return nullptr;
  const bool hasAlpha = (image.format & PNG_FORMAT_FLAG_ALPHA) != 0;
  image.format = hasAlpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
  image.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;  // as everybody else takes them
  std::vector<std::uint8_t> pixels(PNG_IMAGE_SIZE(image));
  if (png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) == 0) return nullptr;
  return std::make_shared<const platform::PixelBuffer>(
      static_cast<int>(image.width), static_cast<int>(image.height), platform::PixelFormat::rgb24,
      hasAlpha ? withoutAlpha(pixels) : std::move(pixels));
}

}  // namespace corvana::devices
