#pragma once

#include <optional>
#include <string_view>

namespace corvana::devices {

/// What the first bytes of a picture file tell, read without decoding it.
struct ImageHeader {
  enum class Type { jpeg, png };

  Type type = Type::jpeg;
  int width = 0;
  int height = 0;
  /// The camera's notes (EXIF) from their byte order mark on; empty when there are none.
  std::string_view exif;
};

/// Reads a header; absent when the bytes are neither JPEG nor PNG, or are damaged before the size.
std::optional<ImageHeader> readImageHeader(std::string_view bytes);

}  // namespace corvana::devices
