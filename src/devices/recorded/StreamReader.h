#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "devices/gstreamer/GstSupport.h"
#include "devices/recorded/MediaProbe.h"
#include "platform/foundation/Fault.h"
#include "platform/media/PixelBuffer.h"

namespace corvana::devices {

/// One stream pulled piece by piece out of a pipeline, which works a few pieces ahead. No call
/// takes longer than half a minute. One thread at a time.
class StreamReader {
 public:
  /// Makes the pipeline of `line`, the launch line up to what is pulled; `name` stands for the file
  /// in errors.
  static platform::Expected<StreamReader> open(std::string name, const std::string& line);
  /// An element of the line, to be set up before the start.
  GstElement* element(const char* elementName) { return child(pipeline_, elementName); }
  /// Before the start.
  void useOneDecodingThread();
  void start();
  /// The next piece; null at the end of the stream. The error is one sentence.
  platform::Expected<GstPtr<GstSample>> pull();

  /// The place of a sample on the file's time line; absent when it has none.
  static std::optional<platform::Duration> timeOf(GstSample* sample);

 private:
  StreamReader(std::string name, GstPtr<GstElement> pipeline);

  void readMessages();

  std::string name_;
  GstPtr<GstElement> pipeline_;
  GstElement* sink_ = nullptr;
  std::optional<std::string> error_;
  std::optional<std::string> missing_;
};

/// Opens a stream of a video file (`video_0`, `audio_0`), decoded and converted, and does not start
/// it yet. The elements that take the file apart are named `file` and `demuxer`.
platform::Expected<StreamReader> openStream(const std::filesystem::path& path,
                                            const std::string& stream,
                                            const std::string& conversion);

/// Upright I420 pictures (BT.601, limited range) of one size, in order of strictly growing time.
class VideoReader {
 public:
  struct Picture {
    platform::PixelBufferRef image;
    platform::Duration time{};  ///< since the stream's first picture
  };

  static platform::Expected<std::unique_ptr<VideoReader>> open(const std::filesystem::path& path,
                                                               const MediaInfo& info);
  /// The next picture; absent at the end.
  platform::Expected<std::optional<Picture>> next();
  /// Where the first picture lies on the file's time line.
  platform::Duration origin() const { return origin_.value_or(platform::Duration::zero()); }

 private:
  VideoReader(const std::filesystem::path& path, const MediaInfo& info, StreamReader reader);
  platform::Expected<bool> placePicture(GstSample* sample);

  std::string name_;
  MediaInfo info_;
  StreamReader reader_;
  std::optional<platform::Duration> origin_;
  std::optional<platform::Duration> last_;
};

/// A file's sound as 48 kHz mono, read forward by position, silence where there is none.
class AudioReader {
 public:
  static constexpr int kSampleRate = 48000;

  /// Opens the file's sound, which is decoded from now on.
  static platform::Expected<std::unique_ptr<AudioReader>> open(const std::filesystem::path& path);
  /// Lets position 0 be the instant `origin` of the file's time line. Once, before the first
  /// `read`.
  platform::Expected<void> begin(platform::Duration origin);
  /// `count` samples from `position` on, which must not lie before the end of an earlier call.
  platform::Expected<std::vector<std::int16_t>> read(std::int64_t position, std::int64_t count);
  bool hasEnded() const { return ended_; }

 private:
  explicit AudioReader(StreamReader reader);
  platform::Expected<void> readChunk();
  std::int64_t chunkEnd() const;

  StreamReader reader_;
  platform::Duration origin_{};
  std::vector<std::int16_t> chunk_;
  std::int64_t chunkStart_ = 0;
  bool started_ = false;
  bool ended_ = false;
};

}  // namespace corvana::devices
