#include "devices/pictures/ImageHeader.h"

#include <cstddef>
#include <cstdint>

namespace corvana::devices {
namespace {

using namespace std::string_view_literals;

constexpr auto kPngSignature = "\x89PNG\r\n\x1a\n\0\0\0\rIHDR"sv;
constexpr auto kJpegSignature = "\xff\xd8\xff"sv;
constexpr auto kExifSignature = "Exif\0\0"sv;

std::uint32_t number(std::string_view bytes, std::size_t at, std::size_t count) {
  std::uint32_t value = 0;
  for (std::size_t i = at; i < at + count; ++i) {
    value = value << 8 | static_cast<std::uint8_t>(bytes[i]);
  }
  return value;
}

std::optional<ImageHeader> readPng(std::string_view bytes) {
  if (bytes.size() < kPngSignature.size() + 8) return {};
  ImageHeader header;
  header.type = ImageHeader::Type::png;
  // More than 31 bits are not allowed, and come out as a negative size that nobody accepts.
  header.width = static_cast<int>(number(bytes, kPngSignature.size(), 4));
  header.height = static_cast<int>(number(bytes, kPngSignature.size() + 4, 4));
  return header;
}

/// A frame header: any coding, but not the tables that share its range of markers.
bool isFrameHeader(std::uint32_t marker) {
  return marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
}

std::optional<ImageHeader> readJpeg(std::string_view bytes) {
  ImageHeader header;
  for (std::size_t at = 2; at + 4 <= bytes.size();) {
    if (number(bytes, at, 1) != 0xff) return {};
    const std::uint32_t marker = number(bytes, at + 1, 1);
    if (marker == 0xff) {  // padding
      ++at;
      continue;
    }
    const std::size_t length = number(bytes, at + 2, 2);
    if (length < 2 || at + 2 + length > bytes.size()) return {};
    const std::string_view body = bytes.substr(at + 4, length - 2);
    if (marker == 0xe1 && body.starts_with(kExifSignature)) {
      header.exif = body.substr(kExifSignature.size());
    } else if (isFrameHeader(marker)) {
      if (body.size() < 5) return {};
      header.height = static_cast<int>(number(body, 1, 2));
      header.width = static_cast<int>(number(body, 3, 2));
      return header;
    }
    at += 2 + length;
  }
  return {};
}

}  // namespace

std::optional<ImageHeader> readImageHeader(std::string_view bytes) {
  if (bytes.starts_with(kPngSignature)) return readPng(bytes);
  if (bytes.starts_with(kJpegSignature)) return readJpeg(bytes);
  return {};
}

}  // namespace corvana::devices
