#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/foundation/Fault.h"
#include "platform/foundation/Time.h"

namespace corvana::devices {

/// What a video file holds, after its rotation and with square pixels.
struct MediaInfo {
  int width = 0;         ///< pixels
  int height = 0;        ///< pixels
  double frameRate = 0;  ///< nominal frames a second
  platform::Duration duration{};
  bool hasAudio = false;
  bool isUpright = true;  ///< its pictures are to be shown as they are stored
};

/// Pictures up to this many pixels wide and high are read and filmed, and no smaller ones.
constexpr int kMostPictureSize = 4096;
constexpr int kLeastPictureSize = 16;

/// A look into a video file. Between its start and its end the media library goes on by itself:
/// most of the time goes into loading its decoders. Whoever does not care for the end just drops
/// it. One thread at a time.
class MediaProbe {
 public:
  /// Returns at once. The error is one sentence: no such file, or not a video.
  static platform::Expected<std::unique_ptr<MediaProbe>> start(const std::filesystem::path& path);
  ~MediaProbe();

  const std::filesystem::path& path() const { return path_; }
  /// Once. Blocks for as long as it takes to decode a first picture, half a minute at most. The
  /// error is one sentence: no picture in it, too large, damaged, or no decoder installed (with the
  /// Debian package that brings it).
  platform::Expected<MediaInfo> finish();

 private:
  struct Look;
  MediaProbe(std::filesystem::path path, std::unique_ptr<Look> look);

  std::filesystem::path path_;
  std::unique_ptr<Look> look_;
};

/// Start and end in one. Any thread.
platform::Expected<MediaInfo> probe(const std::filesystem::path& path);

}  // namespace corvana::devices
