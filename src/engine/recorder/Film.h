#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "corvana/VideoCapture.h"
#include "engine/recorder/FilmPace.h"
#include "platform/foundation/Fault.h"
#include "platform/foundation/RunLoop.h"
#include "platform/media/AssetWriter.h"

namespace corvana::engine {

struct FilmSettings {
  /// Folder of the run; the film is recorded there as film.partial.mp4 and called film.mp4 when it
  /// is complete. Where files of these names lie already, it is film2 and so on.
  std::filesystem::path folder;
  /// Whether the films of failed runs are kept, as film.run1.mp4 and so on.
  bool keepFailedRuns = false;
  std::optional<platform::WriterSettings> video;
  std::optional<platform::WriterSettings> audio;
  /// Told once, on the main queue, that no film can be recorded any further; may be empty.
  std::function<void(const platform::Fault&)> onFault = {};
  /// Told on the main queue that the film takes so many pictures a second at most from now on, or
  /// all of them again; may be empty.
  std::function<void(std::optional<int> limit)> onPace = {};
};

/// The films of one flow: one is open at most. Opening and closing is main-queue work that goes on
/// on a queue of its own; samples come on the capture queues.
class Film final : public corvana::VideoWriter, public std::enable_shared_from_this<Film> {
 public:
  /// Opens the first film at once; its fault is the answer, and not told to `onFault`.
  static platform::Expected<std::shared_ptr<Film>> make(platform::RunLoop& loop,
                                                        platform::AssetWriterFactory& factory,
                                                        FilmSettings settings);

  /// Pictures are left out, evenly, while the encoder does not keep up. Capture queue.
  void writeVideo(const platform::CMSampleBufferRef& sample);
  void writeAudio(const platform::CMSampleBufferRef& sample) override;
  /// How many pictures the encoder has not taken yet. Any thread.
  int framesWaiting() const;
  /// How many pictures were left out on purpose. Any thread.
  std::uint64_t framesLeftOut() const { return pace_.leftOut(); }

  /// Ends the open film; the completion (may be null) comes on the main queue with film.mp4 or the
  /// error. Without an open film it comes with the answer of the last stop.
  void stop(corvana::VideoCapture::StopCompletion completion);
  /// Whether the answer of a `stop` is still to come: a slow machine may have seconds of pictures
  /// to encode. Main queue.
  bool isStopping() const { return stopsUnderWay_ > 0; }
  /// Ends the open film if there is one, puts the film of the failed run away, and opens a new one.
  void restart();
  /// Ends the open film, if there is one, which stays as film.partial.mp4. The completion (may be
  /// null) comes on the main queue when no film is open any more.
  void abandon(platform::Block completion = nullptr);

  /// Frames and buffers of all films of the flow; the seconds are those of the last one.
  platform::AssetWriterCounters counters() const;
  /// The names that its films were given, in the order of the runs; a file of such a name need not
  /// be there.
  std::vector<std::string> fileNames() const;

 private:
  using Outcome = tl::expected<corvana::FileURL, corvana::IDError>;
  using Writer = std::shared_ptr<platform::AssetWriter>;

  Film(platform::RunLoop& loop, platform::AssetWriterFactory& factory, FilmSettings settings);
  std::filesystem::path complete() const { return settings_.folder / (stem_ + ".mp4"); }
  std::filesystem::path partial() const { return settings_.folder / (stem_ + ".partial.mp4"); }
  std::optional<platform::Fault> open();
  Writer takeWriter();
  Writer currentWriter() const;
  bool takes(const platform::CMSampleBuffer& sample, int waiting);
  platform::Expected<void> close(platform::AssetWriter& writer);
  Outcome finish(platform::AssetWriter& writer);
  void putFailedRunAway();
  void tellFaultOf(const Writer& writer);
  void tell(const platform::Fault& fault);

  platform::RunLoop& loop_;
  platform::AssetWriterFactory& factory_;
  const FilmSettings settings_;
  const std::string stem_;
  std::shared_ptr<platform::DispatchQueue> queue_;
  FilmPace pace_;  // capture queue
  mutable std::mutex mutex_;
  Writer writer_;                           // guarded by mutex_
  platform::AssetWriterCounters counters_;  // of the closed films; guarded by mutex_
  std::vector<std::string> keptRuns_;       // guarded by mutex_
  bool faultTold_ = false;                  // main queue
  Outcome outcome_ = tl::unexpected(corvana::IDError("No film was recorded."));  // film queue
  int stopsUnderWay_ = 0;                                                        // main queue
  int failedRuns_ = 0;                                                           // film queue
};

}  // namespace corvana::engine
