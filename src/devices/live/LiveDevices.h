#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "devices/film/MediaSource.h"
#include "devices/gstreamer/MediaElements.h"
#include "devices/live/LiveSource.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::devices {

class LiveCamera;
class LiveMicrophone;
class LiveStream;

/// Clockwise quarter turns that bring a camera's pictures upright.
enum class CameraTurn { none = 0, right = 90, around = 180, left = 270 };

/// A live camera and, perhaps, a live microphone. Both are opened at once and stay so until this is
/// destroyed. The loop's time must be real. Main queue.
///
/// A camera that fails or delivers nothing for three seconds is lost, which is an error; a
/// microphone that fails, falls silent or jumps is a warning, since the film can do without.
class LiveDevices final : public MediaSource, public std::enable_shared_from_this<LiveDevices> {
 public:
  struct Setup {
    LiveSource camera{};
    CameraTurn turn = CameraTurn::none;
    VideoCodecChoice codecChoice = VideoCodecChoice::automatic;
    std::optional<LiveSource> microphone{};
    /// How long a device may take to deliver its first sample.
    platform::Duration patience = std::chrono::seconds(5);
  };

  /// Opens both devices and waits for their first samples; the error is one sentence.
  static platform::Expected<std::shared_ptr<LiveDevices>> open(platform::RunLoop& loop,
                                                               Setup setup);
  ~LiveDevices() override;

  platform::AVCaptureDeviceRef camera() const override;
  platform::AVCaptureDeviceRef microphone() const override;
  bool cameraIsVirtual() const override { return cameraIsVirtual_; }
  bool microphoneIsVirtual() const override { return microphoneIsVirtual_; }
  std::vector<CameraSign> cameraSigns() const override;
  std::uint64_t framesDropped() const override;

  static constexpr platform::Duration kCameraPatience = std::chrono::seconds(3);
  static constexpr platform::Duration kMicrophonePatience = std::chrono::seconds(2);
  static constexpr platform::Duration kLongestSilence = std::chrono::seconds(5);

 private:
  /// Counted in looks, not read from a clock: a machine that stands still loses nobody's camera.
  struct Pulse {
    std::uint64_t samplesTaken = 0;
    int quietLooks = 0;
    platform::Duration look(const LiveStream& stream);
  };

  LiveDevices(platform::RunLoop& loop, Setup setup);
  platform::Expected<void> openBoth(platform::Duration patience);
  void watch();
  void watchCamera();
  void watchMicrophone();
  void tellSigns();
  void warnOnce(bool& warned, bool now, const std::string& sentence);

  platform::RunLoop& loop_;
  std::shared_ptr<LiveCamera> camera_;
  std::shared_ptr<LiveMicrophone> microphone_;
  const bool cameraIsVirtual_;
  const bool cameraClaimsUsb_;
  const bool microphoneIsVirtual_;
  std::shared_ptr<platform::Timer> timer_;

  Pulse cameraPulse_;
  Pulse microphonePulse_;
  std::size_t signsTold_ = 0;
  bool cameraLost_ = false;
  bool cameraChanged_ = false;
  bool cameraJumped_ = false;
  bool microphoneLost_ = false;
  bool microphoneSilent_ = false;
  bool microphoneJumped_ = false;
};

}  // namespace corvana::devices
