#pragma once

#include <filesystem>
#include <string>

#include "platform/foundation/Fault.h"

namespace corvana::devices {

/// The element that takes a video file apart (its streams are its pads `video_0`, `audio_0`); known
/// by the file's first bytes. The error is one sentence: no such file, not a video.
platform::Expected<std::string> demuxerOf(const std::filesystem::path& path);

}  // namespace corvana::devices
