#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "devices/film/AudioTimeline.h"
#include "devices/film/FilmFile.h"
#include "devices/film/FilmSettings.h"
#include "devices/film/FilmSoundConverter.h"
#include "devices/film/FilmWitness.h"
#include "devices/film/Mp4Dates.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/RunLoop.h"
#include "platform/media/AssetWriter.h"

namespace corvana::devices {

class FilmPipeline;

/// An MP4 file with H.264 or HEVC and AAC. While it is recorded it only grows, in fragments of half
/// a second that are put on the disk at least once a second: it plays whenever the process dies or
/// the power goes, but for its last second. Finished it is a plain film, seekable from its first
/// byte, of any length. The same frames and sound give the same bytes where no clock gives a date.
///
/// Pictures are upright, so the film's matrix is the identity: nothing is left for a player to
/// turn. The settings or else the first frame fix the picture's size (an odd last row or column is
/// cut off); others are scaled into it with borders. Sound of another rate is converted. The film
/// ends with its last frame, the sound within one AAC frame (21 ms) before. In virtual time
/// appending waits for the encoder; in real time a frame that finds three seconds of others waiting
/// is dropped. Any thread.
class FilmWriter final : public platform::AssetWriter {
 public:
  /// The witness may be null.
  FilmWriter(const platform::RunLoop& loop, FilmFormat format, std::shared_ptr<FilmFile> file,
             WallClock wallClock, std::shared_ptr<FilmWitness> witness = nullptr);
  ~FilmWriter() override;

  bool appendVideo(const platform::CMSampleBufferRef& sample) override;
  bool appendAudio(const platform::CMSampleBufferRef& sample) override;
  platform::Expected<void> finish() override;
  std::optional<platform::Fault> fault() const override;
  int framesWaiting() const override;
  platform::AssetWriterCounters counters() const override;

 private:
  using Outcome = platform::Expected<void>;

  std::optional<platform::Fault> currentFault() const;
  bool isOpen();
  bool fail(platform::Fault fault);
  bool begin(const platform::CMSampleBuffer& sample);
  bool accepts(const platform::CMSampleBuffer& sample);
  bool hasRoom();
  void write(const platform::CMSampleBuffer& sample);
  void writeSound();
  void syncSoon();
  void pushLastSound();
  Outcome close();
  void removeFile();

  const platform::RunLoop& loop_;
  const WallClock wallClock_;
  std::mutex endMutex_;  ///< held while the film ends, locked before `mutex_`
  mutable std::mutex mutex_;
  FilmFormat format_;
  const std::shared_ptr<FilmFile> file_;
  const std::shared_ptr<FilmWitness> witness_;
  FilmSoundConverter converter_;
  AudioTimeline sound_;
  std::unique_ptr<FilmPipeline> pipeline_;
  CreationTime created_;
  platform::TimePoint origin_{};
  platform::TimePoint lastFrame_{};
  std::optional<platform::TimePoint> lastSync_;
  platform::Duration pictureEnd_{};
  platform::AssetWriterCounters counters_;
  std::optional<platform::Fault> fault_;
  bool isEnding_ = false;
  std::optional<Outcome> outcome_;  // guarded by endMutex_
};

/// Makes film files, readable by their owner only. Construction is for the main queue.
class FilmWriterFactory final : public platform::AssetWriterFactory {
 public:
  /// Films get the date of their first frame in real time, none in virtual time.
  explicit FilmWriterFactory(platform::RunLoop& loop);
  FilmWriterFactory(platform::RunLoop& loop, WallClock wallClock);

  /// Each further film gets a witness of this maker.
  void showTo(WitnessMaker witnesses) { witnesses_ = std::move(witnesses); }

  platform::Expected<std::shared_ptr<platform::AssetWriter>> make(
      const std::filesystem::path& path, const std::optional<platform::WriterSettings>& video,
      const std::optional<platform::WriterSettings>& audio) override;

 private:
  platform::RunLoop& loop_;
  const WallClock wallClock_;
  const std::shared_ptr<platform::DispatchQueue> diskQueue_;
  WitnessMaker witnesses_;
};

}  // namespace corvana::devices
