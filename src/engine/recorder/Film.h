#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "corvana/VideoCapture.h"
#include "platform/foundation/RunLoop.h"
#include "platform/media/AssetWriter.h"

namespace engine {

struct FilmSettings {
  /// Folder of the run; the film is recorded there as film.partial.mp4 and called film.mp4 when it
  /// is complete.
  std::filesystem::path folder;
  /// Keep the films of failed runs as film.run1.mp4 and so on, instead of removing them.
  bool keepFailedRuns = false;
  std::optional<platform::WriterSettings> video;
  std::optional<platform::WriterSettings> audio;
};

/// The films of one flow: one is open at most. Opening and closing is main-queue work that goes on
/// on a queue of its own; samples come on the capture queues.
class Film final : public corvana::VideoWriter, public std::enable_shared_from_this<Film> {
 public:
  /// Opens the first film at once.
  static tl::expected<std::shared_ptr<Film>, platform::Fault> make(
      platform::RunLoop& loop, platform::AssetWriterFactory& factory, FilmSettings settings);

  void writeVideo(const platform::CMSampleBufferRef& sample);
  void writeAudio(const platform::CMSampleBufferRef& sample) override;

  /// Ends the open film; the completion (may be null) comes on the main queue with film.mp4 or the
  /// error. Without an open film it comes with the answer of the last stop.
  void stop(corvana::VideoCapture::StopCompletion completion);
  /// From `stop` until its answer: a slow machine may have seconds of pictures still to encode.
  /// Main queue.
  bool isStopping() const { return stopsUnderWay_ > 0; }
  /// Ends the open film if there is one, puts the film of the failed run away, and opens a new one.
  void restart();
  /// Ends the open film, if there is one, which stays as film.partial.mp4. The completion (may be
  /// null) comes on the main queue when no film is open any more.
  void abandon(platform::Block completion = nullptr);

  platform::AssetWriterCounters counters() const;

  static constexpr const char* kFileName = "film.mp4";
  static constexpr const char* kPartialFileName = "film.partial.mp4";

 private:
  using Outcome = tl::expected<corvana::FileURL, corvana::IDError>;
  using Writer = std::shared_ptr<platform::AssetWriter>;

  Film(platform::RunLoop& loop, platform::AssetWriterFactory& factory, FilmSettings settings);
  std::optional<platform::Fault> open();
  Writer takeWriter();
  Writer currentWriter() const;
  Outcome finish(platform::AssetWriter& writer);
  void putFailedRunAway();

  platform::RunLoop& loop_;
  platform::AssetWriterFactory& factory_;
  FilmSettings settings_;
  std::shared_ptr<platform::DispatchQueue> queue_;
  mutable std::mutex mutex_;
  Writer writer_;                           // guarded by mutex_
  platform::AssetWriterCounters counters_;  // of the last closed film; guarded by mutex_
  Outcome outcome_ = tl::unexpected(corvana::IDError("No film was recorded."));  // film queue
  int stopsUnderWay_ = 0;                                                        // main queue
  int failedRuns_ = 0;                                                           // film queue
};

}  // namespace engine
