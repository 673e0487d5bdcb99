#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "devices/live/LiveSource.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {

/// A recorded file as the head of live pipelines: played in real time, over and over, without a
/// seam and with growing times. Its first picture stands until the camera's pictures are wanted.
struct LiveFile {
  LiveSource camera;
  /// The file's sound in step with the camera; absent when it has none.
  std::optional<LiveSource> microphone;
};

/// Opens a video file as live devices; the error is one sentence, as of `probe`.
platform::Expected<LiveFile> openLiveFile(const std::filesystem::path& path);

}  // namespace corvana::devices
