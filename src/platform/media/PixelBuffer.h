#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace corvana::platform {

enum class PixelFormat {
  rgb24,  ///< one plane, three bytes a pixel: R, G, B
  gray8,  ///< one plane, one byte a pixel
  i420,   ///< three planes Y, U, V; U and V at half width and height, rounded up; limited range
};

/// An immutable picture in memory, shared by everyone who holds it. Planes are tightly packed, one
/// behind the other, rows from the top.
class PixelBuffer {
 public:
  PixelBuffer(int width, int height, PixelFormat format, std::vector<std::uint8_t> bytes);

  int width() const { return width_; }
  int height() const { return height_; }
  PixelFormat format() const { return format_; }
  int planeCount() const { return format_ == PixelFormat::i420 ? 3 : 1; }
  const std::uint8_t* plane(int index) const;
  /// Bytes from one row of the plane to the next.
  int stride(int index) const;
  const std::vector<std::uint8_t>& bytes() const { return bytes_; }

  static std::size_t byteCount(int width, int height, PixelFormat format);

 private:
  int width_;
  int height_;
  PixelFormat format_;
  std::vector<std::uint8_t> bytes_;
};

using PixelBufferRef = std::shared_ptr<const PixelBuffer>;

}  // namespace corvana::platform
