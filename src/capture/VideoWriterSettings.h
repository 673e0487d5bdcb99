#pragma once

#include <optional>

#include "corvana/CaptureSession.h"
#include "platform/media/WriterSettings.h"

namespace corvana::capture {

/// What the camera recommends for a film of this container, in HEVC where the camera offers it and
/// in H.264 everywhere else. Absent when it recommends nothing.
std::optional<platform::WriterSettings> recommendedVideoSettingsForAssetWriter(
    corvana::CaptureSession& session, const platform::AVFileType& fileType);

}  // namespace corvana::capture
