#include "corvana/ImageData.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace corvana {
namespace {

/// The two source positions that one output position lies between, and the share of the second.
struct Tap {
  int first;
  int second;
  float weight;
};

std::vector<Tap> taps(int from, int to) {
  std::vector<Tap> result;
  result.reserve(static_cast<std::size_t>(to));
  for (int i = 0; i < to; ++i) {
    const float position =
        (static_cast<float>(i) + 0.5F) * static_cast<float>(from) / static_cast<float>(to) - 0.5F;
    const float clamped = std::clamp(position, 0.0F, static_cast<float>(from - 1));
    const int first = static_cast<int>(clamped);
    result.push_back({first, std::min(first + 1, from - 1), clamped - static_cast<float>(first)});
  }
  return result;
}

float mix(float a, float b, float weight) {
  return a + (b - a) * weight;
}

}  // namespace

std::vector<std::uint8_t> MetalBilinearScaler::scale(const platform::PixelBuffer& pixels, int width,
                                                     int height) const {
  const std::vector<Tap> columns = taps(pixels.width(), width);
  const std::vector<Tap> rows = taps(pixels.height(), height);
  std::vector<std::uint8_t> result;
  result.reserve(platform::PixelBuffer::byteCount(width, height, platform::PixelFormat::rgb24));
  const int stride = pixels.stride(0);
  for (const Tap& row : rows) {
    const std::uint8_t* top = pixels.plane(0) + static_cast<std::ptrdiff_t>(row.first) * stride;
    const std::uint8_t* bottom = pixels.plane(0) + static_cast<std::ptrdiff_t>(row.second) * stride;
    for (const Tap& column : columns) {
      for (int channel = 0; channel < 3; ++channel) {
        const int left = column.first * 3 + channel;
        const int right = column.second * 3 + channel;
        const float value = mix(mix(top[left], top[right], column.weight),
                                mix(bottom[left], bottom[right], column.weight), row.weight);
        result.push_back(static_cast<std::uint8_t>(std::lround(value)));
      }
    }
  }
  return result;
}

std::optional<std::vector<std::uint8_t>> scaledRGBData(const platform::UIImageRef& image,
                                                       const MetalBilinearScaler& scaler,
                                                       const platform::CGSize& size,
                                                       bool isQuantized) {
  if (!image || !image->pixels() || image->pixels()->format() != platform::PixelFormat::rgb24) {
    return {};
  }
  if (!isQuantized || size.width < 1 || size.height < 1) return {};
  return scaler.scale(*image->pixels(), static_cast<int>(size.width),
                      static_cast<int>(size.height));
}

std::optional<std::vector<double>> cgFloats(std::span<const std::uint8_t> data) {
  if (data.size() % sizeof(float) != 0) return {};
  std::vector<double> result(data.size() / sizeof(float));
  for (std::size_t i = 0; i < result.size(); ++i) {
    float value = 0;
    std::memcpy(&value, data.data() + i * sizeof(float), sizeof(float));
    result[i] = value;
  }
  return result;
}

}  // namespace corvana
