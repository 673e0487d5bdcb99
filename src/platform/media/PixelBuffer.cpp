#include "platform/media/PixelBuffer.h"

#include <utility>

#include "platform/foundation/Require.h"

namespace corvana::platform {
namespace {

std::size_t product(int width, int height) {
  return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

}  // namespace

PixelBuffer::PixelBuffer(int width, int height, PixelFormat format, std::vector<std::uint8_t> bytes)
    : width_(width), height_(height), format_(format), bytes_(std::move(bytes)) {
  require(width > 0 && height > 0 && bytes_.size() == byteCount(width, height, format),
          "PixelBuffer: the byte count does not fit the size");
}

std::size_t PixelBuffer::byteCount(int width, int height, PixelFormat format) {
  switch (format) {
    case PixelFormat::rgb24:
      return product(width, height) * 3;
    case PixelFormat::gray8:
      return product(width, height);
    case PixelFormat::i420:
      return product(width, height) + 2 * product((width + 1) / 2, (height + 1) / 2);
  }
  return 0;
}

int PixelBuffer::stride(int index) const {
  switch (format_) {
    case PixelFormat::rgb24:
      return width_ * 3;
    case PixelFormat::gray8:
      return width_;
    case PixelFormat::i420:
      return index == 0 ? width_ : (width_ + 1) / 2;
  }
  return 0;
}

const std::uint8_t* PixelBuffer::plane(int index) const {
  require(index >= 0 && index < planeCount(), "PixelBuffer: no such plane");
  std::size_t offset = 0;
  if (index > 0) offset += product(width_, height_);
  if (index > 1) offset += product((width_ + 1) / 2, (height_ + 1) / 2);
  return bytes_.data() + offset;
}

}  // namespace corvana::platform
