#pragma once

#include <filesystem>
#include <string>

#include <tl/expected.hpp>

namespace corvana::devices {

/// The element that takes a video file apart (its streams are its pads `video_0`, `audio_0`); known
/// by the file's first bytes. The error is one sentence: no such file, not a video.
tl::expected<std::string, std::string> demuxerOf(const std::filesystem::path& path);

}  // namespace corvana::devices
