#pragma once

#include <optional>
#include <string>

#include "devices/gstreamer/MediaElements.h"
#include "platform/foundation/Fault.h"
#include "platform/media/WriterSettings.h"

/// Writer settings as devices recommend them and films obey them.
namespace corvana::devices {

/// The size without an odd last row or column, for which chroma at half size leaves no room.
constexpr int even(int size) {
  return size / 2 * 2;
}

/// Least and most width and height of pictures and films, in pixels.
constexpr int kLeastFilmSize = 16;
constexpr int kMostFilmSize = 4096;
constexpr bool isFilmSize(int size) {
  return size >= kLeastFilmSize && size <= kMostFilmSize;
}

/// H.264 or HEVC settings that suit pictures of this size.
platform::WriterSettings videoSettings(const platform::AVVideoCodecType& codec, int width,
                                       int height);

/// AAC settings of a voice: 48 kHz, mono, 96 kbit/s.
platform::WriterSettings audioSettings();

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

/// Encoders, bit rates, size and sound format of a film; absent video settings mean defaults,
/// absent audio settings no sound track. The error names what is missing on this machine, of the
/// wrong type or impossible.
platform::Expected<FilmFormat> filmFormat(const std::optional<platform::WriterSettings>& video,
                                          const std::optional<platform::WriterSettings>& audio);

}  // namespace corvana::devices
