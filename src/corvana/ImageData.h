#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/geometry/Geometry.h"
#include "platform/uikit/UIImage.h"

namespace corvana {

/// Bilinear scaling with half-pixel centres: the centre of the first output pixel lies at the
/// centre of the area that it stands for. No low-pass: what the face model was measured with.
class MetalBilinearScaler {
 public:
  /// `pixels` is RGB, three bytes a pixel, rows from the top.
  std::vector<std::uint8_t> scale(const platform::PixelBuffer& pixels, int width, int height) const;
};

/// The image's RGB bytes at `size` pixels, three a pixel, rows from the top; absent for an image
/// without RGB pixels or an empty size. `isQuantized` false is not offered and gives nothing.
std::optional<std::vector<std::uint8_t>> scaledRGBData(const platform::UIImageRef& image,
                                                       const MetalBilinearScaler& scaler,
                                                       const platform::CGSize& size,
                                                       bool isQuantized);

/// Bytes read as consecutive native 32-bit floats, widened; absent when the count is no multiple of
/// four.
std::optional<std::vector<double>> cgFloats(std::span<const std::uint8_t> data);

}  // namespace corvana
