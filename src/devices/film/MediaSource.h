#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/foundation/Fault.h"
#include "platform/media/CaptureDevice.h"

namespace corvana::devices {

/// Something about a camera's stream that a sensor does not do: software may feed it in.
struct CameraSign {
  std::string name;  ///< "regularTimes", "foreignTimes", "identicalPictures" or "claimsUsb"
  double value = 0;
  double limit = 0;
};

/// The camera and the microphone of one run, in step with each other: a recorded file or live
/// devices. The reports are set before the camera starts and come on the main queue.
class MediaSource {
 public:
  virtual ~MediaSource() = default;

  virtual platform::AVCaptureDeviceRef camera() const = 0;
  /// The microphone; null when there is none.
  virtual platform::AVCaptureDeviceRef microphone() const = 0;
  /// Whether the device is no hardware: what it shows proves nothing about the person before the
  /// machine.
  virtual bool cameraIsVirtual() const = 0;
  virtual bool microphoneIsVirtual() const = 0;
  /// What speaks against the camera so far; of recorded files nothing.
  virtual std::vector<CameraSign> cameraSigns() const { return {}; }
  /// How many pictures the camera took and could not hand over.
  virtual std::uint64_t framesDropped() const = 0;

  /// Called when the camera has delivered its last picture and that picture's time has passed; once
  /// at most.
  std::function<void()> onEnd;
  /// Called with the reason when the camera can't go on; once at most.
  std::function<void(platform::Fault)> onError;
  /// Called with each sign against the camera, when it was first seen.
  std::function<void(CameraSign)> onCameraSign;
  /// Called with one sentence when something is amiss but the run can go on.
  std::function<void(std::string)> onWarning;
};

}  // namespace corvana::devices
