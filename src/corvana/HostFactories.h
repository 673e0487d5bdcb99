#pragma once

#include <memory>
#include <optional>

#include "corvana/CaptureSession.h"
#include "corvana/VideoCapture.h"

namespace corvana {

/// Makes the host's objects; implemented by the engine or by a scripted host. Main queue.
class HostFactories {
 public:
  virtual ~HostFactories() = default;
  /// Never null, also without a camera; asked once by each screen, before it appears.
  virtual std::shared_ptr<CaptureSession> makeCaptureSession(CameraPosition position) = 0;
  /// Asked by a screen that has appeared, until it has one, which it then owns. Overlay frames are
  /// rectangles of the screen, in points. Null when no recorder can be made.
  virtual std::shared_ptr<VideoCapture> makeVideoCapture(
      const platform::CGRect& selfieOverlayFrame, const platform::CGRect& idOverlayFrame,
      const std::optional<platform::WriterSettings>& videoSettings,
      const std::optional<platform::WriterSettings>& audioSettings) = 0;
};

}  // namespace corvana
