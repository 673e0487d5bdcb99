#include "capture/VideoWriterSettings.h"

#include <algorithm>

namespace corvana::capture {

std::optional<platform::WriterSettings> recommendedVideoSettingsForAssetWriter(
    corvana::CaptureSession& session, const platform::AVFileType& fileType) {
  const auto& output = session.videoDataOutput();
  const auto codecs = output.availableVideoCodecTypesForAssetWriter(fileType);
  const bool hevc = std::ranges::find(codecs, platform::kAVVideoCodecTypeHEVC) != codecs.end();
  return output.recommendedVideoSettings(
      hevc ? platform::kAVVideoCodecTypeHEVC : platform::kAVVideoCodecTypeH264, fileType);
}

}  // namespace corvana::capture
