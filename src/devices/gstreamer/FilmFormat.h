#pragma once

#include <string>

#include "devices/gstreamer/MediaElements.h"

namespace devices {

/// What a film is made of; all fixed from its first frame on.
struct FilmFormat {
  int width = 0;  ///< pixels, even; 0 until the first picture when the settings are silent
  int height = 0;
  int framesPerSecond = 30;  ///< nominal: the encoder's rate control reckons with it

  VideoEncoder videoEncoder;
  int videoBitRate = 0;      ///< bit/s
  int keyFrameInterval = 0;  ///< frames
  std::string profileCaps;   ///< what the encoder must deliver, as caps

  bool hasAudio = false;
  AudioEncoder audioEncoder;
  int audioBitRate = 0;  ///< bit/s
  int sampleRate = 0;
  int channels = 0;
};

}  // namespace devices
