#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <tl/expected.hpp>

#include "devices/gstreamer/AudioTimeline.h"
#include "devices/gstreamer/FilmPipeline.h"
#include "platform/media/AssetWriter.h"

namespace devices {

/// An MP4 file with H.264 (or, where hardware encodes it, HEVC) and AAC. It plays whenever the
/// process dies, but for the first second and what came in the last; a finished one is seekable
/// from its first byte. The same frames and sound give the same bytes: the file holds no date.
///
/// The first frame fixes the picture's size (an odd last row or column is cut off). The film ends
/// with its last frame, the sound within one AAC frame (21 ms) before. In virtual time appending
/// waits for the encoder; in real time a frame that finds three seconds of others waiting is
/// dropped. Any thread.
class FilmWriter final : public platform::AssetWriter {
 public:
  FilmWriter(bool dropsWhenFull, FilmFormat format);
  ~FilmWriter() override;

  bool appendVideo(const platform::CMSampleBufferRef& sample) override;
  bool appendAudio(const platform::CMSampleBufferRef& sample) override;
  tl::expected<void, platform::Fault> finish() override;
  void cancel() override;
  std::optional<platform::Fault> fault() const override;
  int framesWaiting() const override;
  platform::AssetWriterCounters counters() const override;

 private:
  bool isOpen();
  bool fail(std::string sentence);
  bool fail(platform::Fault fault);
  bool begin(const platform::CMSampleBuffer& sample);
  bool accepts(const platform::CMSampleBuffer& sample);
  bool hasRoom();
  void write(const platform::CMSampleBuffer& sample);
  void writeSound();
  tl::expected<void, platform::Fault> close();

  const bool dropsWhenFull_;
  mutable std::mutex mutex_;
  FilmFormat format_;
  AudioTimeline sound_;
  std::unique_ptr<FilmPipeline> pipeline_;
  platform::TimePoint origin_{};
  platform::TimePoint lastFrame_{};
  platform::Duration pictureEnd_{};
  platform::AssetWriterCounters counters_;
  std::optional<platform::Fault> fault_;
  std::optional<tl::expected<void, platform::Fault>> outcome_;
};

}  // namespace devices
