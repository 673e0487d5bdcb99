#pragma once

#include <filesystem>
#include <string>

#include "platform/foundation/Fault.h"
#include "platform/foundation/Time.h"

namespace corvana::devices {

/// What a video file holds, after its rotation and with square pixels.
struct MediaInfo {
  int width = 0;         ///< pixels
  int height = 0;        ///< pixels
  double frameRate = 0;  ///< nominal frames a second
  platform::Duration duration{};
  bool hasAudio = false;
};

/// Pictures up to this many pixels wide and high are read and filmed, and no smaller ones.
constexpr int kMostPictureSize = 4096;
constexpr int kLeastPictureSize = 16;

/// Looks into a video file. Blocks for as long as it takes to decode a first picture, half a minute
/// at most. The error is one sentence: no such file, not a video, no picture in it, too large,
/// damaged, or no decoder installed (with the Debian package that brings it). Any thread.
platform::Expected<MediaInfo> probe(const std::filesystem::path& path);

}  // namespace corvana::devices
