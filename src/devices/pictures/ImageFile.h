#pragma once

#include <filesystem>
#include <string>

#include "platform/foundation/Fault.h"
#include "platform/media/PixelBuffer.h"

/// Picture files. Blocking; any thread. Errors are one sentence each.
namespace corvana::devices {

/// Pictures of more pixels are not read: a small file can claim any size.
constexpr int kMostImagePixels = 64'000'000;

/// A JPEG or PNG file as rgb24, turned upright by the camera's note on its orientation.
platform::Expected<platform::PixelBufferRef> readImage(const std::filesystem::path& path);

/// Writes a picture of any pixel format, readable by its owner only; an existing file is replaced,
/// and nothing half-written stays. quality: 0 to 100, as JPEG counts it.
platform::Expected<void> writePng(const std::filesystem::path& path,
                                  const platform::PixelBuffer& image);
platform::Expected<void> writeJpeg(const std::filesystem::path& path,
                                   const platform::PixelBuffer& image, int quality = 92);

}  // namespace corvana::devices
