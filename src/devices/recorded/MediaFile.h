#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "devices/film/MediaSource.h"
#include "devices/gstreamer/MediaElements.h"
#include "devices/recorded/MediaProbe.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/RunLoop.h"
#include "platform/media/CaptureDevice.h"

namespace corvana::devices {

class FileCamera;
class FileMicrophone;

/// A recorded file that stands in for camera and microphone.
///
/// Its time 0 is the instant at which the camera first starts; from then on both devices deliver
/// what the file holds at the present place, whenever they are started, like live ones. In virtual
/// time every picture is decoded and delivered; in real time one that is far too late is dropped.
/// Pictures are upright I420 (BT.601, limited range) of the file's size, sound is 48 kHz mono in
/// buffers of 20 ms that come when their last sample has passed.
class MediaFile final : public MediaSource, public std::enable_shared_from_this<MediaFile> {
 public:
  /// Blocks until the first picture is decoded. The error is one sentence, as of `probe`.
  static platform::Expected<std::shared_ptr<MediaFile>> open(
      platform::RunLoop& loop, const std::filesystem::path& path,
      VideoCodecChoice codecChoice = VideoCodecChoice::automatic);
  /// The same for a file that is being looked into; ends the look.
  static platform::Expected<std::shared_ptr<MediaFile>> open(platform::RunLoop& loop,
                                                             MediaProbe& look,
                                                             VideoCodecChoice codecChoice);
  ~MediaFile() override;

  const MediaInfo& info() const { return info_; }
  platform::AVCaptureDeviceRef camera() const override;
  /// The file's sound as a microphone; null when it has none.
  platform::AVCaptureDeviceRef microphone() const override;
  bool cameraIsVirtual() const override { return true; }
  bool microphoneIsVirtual() const override { return true; }
  /// How many pictures came too late in real time.
  std::uint64_t framesDropped() const override;

 private:
  explicit MediaFile(platform::RunLoop& loop, const MediaInfo& info) : loop_(loop), info_(info) {}
  void post(std::function<void(MediaFile&)> report);
  void reportError(const platform::Fault& fault);

  platform::RunLoop& loop_;
  MediaInfo info_;
  bool errorReported_ = false;
  std::shared_ptr<FileCamera> camera_;
  std::shared_ptr<FileMicrophone> microphone_;
};

}  // namespace corvana::devices
