#include "app/keys/Hexadecimal.h"

namespace corvana::app {

std::string hexadecimal(std::string_view bytes) {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += kDigits[value >> 4];
    text += kDigits[value & 15];
  }
  return text;
}

}  // namespace corvana::app
