#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/media/SampleBuffer.h"
#include "platform/media/WriterSettings.h"

namespace corvana::platform {

enum class AVMediaType { video, audio };

/// A camera or a microphone. A device produces one upright stream of samples of one size and format
/// while it runs; their presentation times are instants of the run loop's clock, and grow. Its
/// session starts and stops it by turns, never at the same time; the rest is asked on the main
/// queue, also while it runs.
class AVCaptureDevice {
 public:
  using SampleHandler = std::function<void(CMSampleBufferRef)>;

  virtual ~AVCaptureDevice() = default;
  virtual std::string localizedName() const = 0;
  virtual AVMediaType mediaType() const = 0;
  /// False when the device can't be opened (busy, gone).
  virtual bool open() = 0;
  /// Starts the flow of samples; the handler is called on a thread of the device, one sample after
  /// the other, in the order of time, and returns at once. May take time: not to be called on the
  /// main queue. Harmless when already running.
  virtual void start(SampleHandler handler) = 0;
  /// Ends the flow and lets go of the handler; no handler call begins after it returns. Any thread,
  /// also the main one: soon done. Harmless when not running.
  virtual void stop() = 0;

  /// For cameras: codecs in which the pictures can be encoded in real time, best first.
  virtual std::vector<AVVideoCodecType> availableVideoCodecTypes(const AVFileType&) const {
    return {};
  }
  /// For cameras: settings that suit the stream; false when there are none.
  virtual bool recommendedVideoSettings(const AVVideoCodecType&, const AVFileType&,
                                        WriterSettings&) const {
    return false;
  }
  /// For microphones: settings that suit the stream; false when there are none.
  virtual bool recommendedAudioSettings(const AVFileType&, WriterSettings&) const { return false; }
};

using AVCaptureDeviceRef = std::shared_ptr<AVCaptureDevice>;

enum class AVAuthorizationStatus { notDetermined, restricted, denied, authorized };

/// The cameras and microphones of the machine and the leave to use them. Main queue.
class MediaDevices {
 public:
  virtual ~MediaDevices() = default;
  /// Null when there is none.
  virtual AVCaptureDeviceRef defaultDevice(AVMediaType type) = 0;
  virtual AVAuthorizationStatus authorizationStatus(AVMediaType type) = 0;
  /// Asks the user; the answer comes once, on any thread, perhaps before this returns. Keep it as
  /// long as the question is open.
  virtual void requestAccess(AVMediaType type, std::function<void(bool granted)> answer) = 0;
};

}  // namespace corvana::platform
