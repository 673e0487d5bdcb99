#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/foundation/Fault.h"
#include "platform/media/CaptureDevice.h"

namespace devices {

/// The camera and the microphone of one run, in step with each other: a recorded file or live
/// devices. The reports are set before the camera starts and come on the main queue.
class MediaSource {
 public:
  virtual ~MediaSource() = default;

  virtual platform::AVCaptureDeviceRef camera() const = 0;
  /// Null when there is none.
  virtual platform::AVCaptureDeviceRef microphone() const = 0;
  /// Not a piece of hardware: what it shows proves nothing about the person before the machine.
  virtual bool cameraIsVirtual() const = 0;
  virtual bool microphoneIsVirtual() const = 0;
  /// Pictures that the camera took and could not hand over.
  virtual std::uint64_t framesDropped() const = 0;

  /// The camera has delivered its last picture and that picture's time has passed. Once at most.
  std::function<void()> onEnd;
  /// The camera can't go on. Once at most.
  std::function<void(platform::Fault)> onError;
  /// Something is amiss, but the run can go on: one sentence.
  std::function<void(std::string)> onWarning;
};

}  // namespace devices
