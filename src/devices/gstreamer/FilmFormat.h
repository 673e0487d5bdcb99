#pragma once

#include <filesystem>

#include "devices/gstreamer/MediaElements.h"
#include "platform/media/PixelBuffer.h"

namespace devices {

/// What a film is made of; all fixed from its first frame on.
struct FilmFormat {
  std::filesystem::path path;
  int width = 0;
  int height = 0;
  platform::PixelFormat pixelFormat = platform::PixelFormat::i420;
  int framesPerSecond = 30;  ///< nominal: the encoder's rate control reckons with it

  VideoEncoder videoEncoder;
  int videoBitRate = 0;      ///< bit/s
  int keyFrameInterval = 0;  ///< frames

  bool hasAudio = false;
  AudioEncoder audioEncoder;
  int audioBitRate = 0;  ///< bit/s
  int sampleRate = 0;
  int channels = 0;
};

}  // namespace devices
