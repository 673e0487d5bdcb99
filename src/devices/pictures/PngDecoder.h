#pragma once

#include <string_view>

#include "platform/media/PixelBuffer.h"

namespace corvana::devices {

/// A PNG file's picture, or its first one, as rgb24, transparency left out; null where the file is
/// damaged. Blocking; any thread.
platform::PixelBufferRef decodePng(std::string_view bytes);

}  // namespace corvana::devices
