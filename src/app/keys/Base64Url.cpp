#include "app/keys/Base64Url.h"

#include <cstdint>

namespace corvana::app {
namespace {

constexpr std::string_view kLetters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

}  // namespace

std::string toBase64Url(std::string_view bytes) {
  std::string text;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char byte : bytes) {
    bits = bits << 8 | static_cast<std::uint8_t>(byte);
    for (count += 8; count >= 6; count -= 6)
      text += kLetters[bits >> (count - 6) & 63];
  }
  if (count > 0) text += kLetters[bits << (6 - count) & 63];
  return text;
}

std::optional<std::string> fromBase64Url(std::string_view text) {
  std::string bytes;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char letter : text) {
    const std::size_t value = kLetters.find(letter);
    if (value == std::string_view::npos) return std::nullopt;
    bits = bits << 6 | static_cast<std::uint32_t>(value);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count);
  }
  if (toBase64Url(bytes) != text) return std::nullopt;
  return bytes;
}

}  // namespace corvana::app
