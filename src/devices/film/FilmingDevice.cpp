#include "devices/film/FilmingDevice.h"

#include "devices/film/FilmSettings.h"

namespace corvana::devices {

std::vector<platform::AVVideoCodecType> FilmingCamera::availableVideoCodecTypes(
    const platform::AVFileType& fileType) const {
  if (fileType != platform::kAVFileTypeMP4) return {};
  return realTimeVideoCodecs(codecChoice_);
}

bool FilmingCamera::recommendedVideoSettings(const platform::AVVideoCodecType& codec,
                                             const platform::AVFileType& fileType,
                                             platform::WriterSettings& settings) const {
  if (fileType != platform::kAVFileTypeMP4 || !encoderFor(codec)) return false;
  const PictureSize size = pictureSize();
  settings = videoSettings(codec, size.width, size.height);
  return true;
}

bool FilmingMicrophone::recommendedAudioSettings(const platform::AVFileType& fileType,
                                                 platform::WriterSettings& settings) const {
  if (fileType != platform::kAVFileTypeMP4 || !aacEncoder()) return false;
  settings = audioSettings();
  return true;
}

}  // namespace corvana::devices
