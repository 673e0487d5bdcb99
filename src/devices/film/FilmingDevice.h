#pragma once

#include <vector>

#include "devices/gstreamer/MediaElements.h"
#include "platform/media/CaptureDevice.h"

/// What the cameras and microphones of this folder, live or recorded, say of the films that can be
/// made of what they deliver.
namespace corvana::devices {

class FilmingCamera : public platform::AVCaptureDevice {
 public:
  explicit FilmingCamera(VideoCodecChoice codecChoice) : codecChoice_(codecChoice) {}

  platform::AVMediaType mediaType() const final { return platform::AVMediaType::video; }
  std::vector<platform::AVVideoCodecType> availableVideoCodecTypes(
      const platform::AVFileType& fileType) const final;
  bool recommendedVideoSettings(const platform::AVVideoCodecType& codec,
                                const platform::AVFileType& fileType,
                                platform::WriterSettings& settings) const final;

 protected:
  struct PictureSize {
    int width;
    int height;
  };
  virtual PictureSize pictureSize() const = 0;

 private:
  const VideoCodecChoice codecChoice_;
};

class FilmingMicrophone : public platform::AVCaptureDevice {
 public:
  platform::AVMediaType mediaType() const final { return platform::AVMediaType::audio; }
  bool recommendedAudioSettings(const platform::AVFileType& fileType,
                                platform::WriterSettings& settings) const final;
};

}  // namespace corvana::devices
