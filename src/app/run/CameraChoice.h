#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/record/Files.h"
#include "devices/film/MediaSource.h"
#include "devices/gstreamer/MediaElements.h"
#include "devices/live/CameraMode.h"
#include "devices/live/LiveDevices.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::app {

/// Which camera and microphone a run is to use.
struct CameraChoice {
  std::string camera = "default";      ///< id, `default`, or the path of a recording
  std::string microphone = "default";  ///< id, `default` or `none`
  /// Asked of a live camera; absent: what the machine has time for at that moment.
  std::optional<devices::CameraMode> mode;
  devices::CameraTurn turn = devices::CameraTurn::none;
  bool allowVirtual = false;  ///< a film from a virtual camera proves nothing
  /// A camera that shows signs of a stream that software feeds in ends the run.
  bool refuseInjected = false;

  /// A recorded file stands in for both. False: they are live, so time is real.
  bool isRecording() const;
};

/// Opens what was chosen, and waits for its first samples; once. The error is one sentence.
using MediaOpener =
    std::function<Expected<std::shared_ptr<devices::MediaSource>>(platform::RunLoop& loop)>;

/// Looks for both devices, without opening them, and says on standard error when the machine is too
/// slow for the usual film. A recording begins to be looked into meanwhile. The error is one
/// sentence, the user's to mend.
Expected<MediaOpener> chooseMedia(const CameraChoice& choice, devices::VideoCodecChoice codec);

}  // namespace corvana::app
