#include "engine/recorder/Film.h"

#include <system_error>
#include <utility>

namespace engine {

using corvana::IDError;
using platform::CMSampleBufferRef;

Film::Film(platform::RunLoop& loop, platform::AssetWriterFactory& factory, FilmSettings settings)
    : loop_(loop),
      factory_(factory),
      settings_(std::move(settings)),
      queue_(loop.makeSerialQueue("FilmQueue")) {}

tl::expected<std::shared_ptr<Film>, platform::Fault> Film::make(
    platform::RunLoop& loop, platform::AssetWriterFactory& factory, FilmSettings settings) {
  std::shared_ptr<Film> film(new Film(loop, factory, std::move(settings)));
  if (auto error = film->open()) return tl::unexpected(std::move(*error));
  return film;
}

std::optional<platform::Fault> Film::open() {
  auto writer =
      factory_.make(settings_.folder / kPartialFileName, settings_.video, settings_.audio);
  if (!writer) {
    outcome_ = tl::unexpected(IDError(writer.error()));
    return writer.error();
  }
  const std::lock_guard lock(mutex_);
  writer_ = std::move(*writer);
  return {};
}

Film::Writer Film::currentWriter() const {
  const std::lock_guard lock(mutex_);
  return writer_;
}

Film::Writer Film::takeWriter() {
  const std::lock_guard lock(mutex_);
  return std::exchange(writer_, nullptr);
}

void Film::writeVideo(const CMSampleBufferRef& sample) {
  if (const Writer writer = currentWriter()) writer->appendVideo(sample);
}

void Film::writeAudio(const CMSampleBufferRef& sample) {
  if (const Writer writer = currentWriter()) writer->appendAudio(sample);
}

Film::Outcome Film::finish(platform::AssetWriter& writer) {
  const auto finished = writer.finish();
  {
    const std::lock_guard lock(mutex_);
    counters_ = writer.counters();
  }
  if (!finished) return tl::unexpected(IDError(finished.error()));
  std::error_code error;
  const auto film = settings_.folder / kFileName;
  std::filesystem::rename(settings_.folder / kPartialFileName, film, error);
  if (error) {
    return tl::unexpected(
        IDError(platform::Fault{"The film could not be given its name in \"" +
                                    settings_.folder.string() + "\": " + error.message() + ".",
                                platform::FaultCause::folderLost}));
  }
  return film;
}

void Film::stop(corvana::VideoCapture::StopCompletion completion) {
  ++stopsUnderWay_;
  queue_->async(
      [self = shared_from_this(), writer = takeWriter(), completion = std::move(completion)] {
        if (writer) self->outcome_ = self->finish(*writer);
        self->loop_.mainQueue().async([self, completion, outcome = self->outcome_] {
          --self->stopsUnderWay_;
          if (completion) completion(outcome);
        });
      });
}

void Film::putFailedRunAway() {
  ++failedRuns_;
  std::error_code ignored;  // Neither file need be there.
  for (const char* name : {kFileName, kPartialFileName}) {
    const auto film = settings_.folder / name;
    if (settings_.keepFailedRuns) {
      const auto kept = "film.run" + std::to_string(failedRuns_) + ".mp4";
      std::filesystem::rename(film, settings_.folder / kept, ignored);
    } else {
      std::filesystem::remove(film, ignored);
    }
  }
}

void Film::restart() {
  queue_->async([self = shared_from_this(), writer = takeWriter()] {
    if (writer) self->finish(*writer);
    self->putFailedRunAway();
    self->open();
  });
}

void Film::abandon(platform::Block completion) {
  // The queue's block owns the writer: closing a file takes time, and the caller may be going.
  queue_->async(
      [self = shared_from_this(), writer = takeWriter(), completion = std::move(completion)] {
        if (writer) {
          writer->finish();
          const std::lock_guard lock(self->mutex_);
          self->counters_ = writer->counters();
        }
        if (completion) self->loop_.mainQueue().async(completion);
      });
}

platform::AssetWriterCounters Film::counters() const {
  const std::lock_guard lock(mutex_);
  return writer_ ? writer_->counters() : counters_;
}

}  // namespace engine
