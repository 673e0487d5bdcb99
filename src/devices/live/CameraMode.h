#pragma once

#include <optional>
#include <string>
#include <vector>

namespace corvana::devices {

/// Size and rate of a camera's pictures, before they are turned upright.
struct CameraMode {
  int width = 1280;
  int height = 720;
  double framesPerSecond = 30;
};

/// Reads `1920x1080@30` or, at the usual rate, `1920x1080`; absent when the text is no mode or an
/// absurd one.
std::optional<CameraMode> parseCameraMode(const std::string& text);
std::string nameOf(const CameraMode& mode);

/// A mode that a device offers, in one of its formats: `YUY2` or the like, `MJPEG`, `H.264`.
struct OfferedMode {
  CameraMode mode;
  std::string format;
};

/// The offer that comes closest: its size first, then its rate, then the format that costs least.
/// Null when there is none.
const OfferedMode* nearestMode(const std::vector<OfferedMode>& offers, const CameraMode& wanted);

}  // namespace corvana::devices
