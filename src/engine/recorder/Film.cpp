#include "engine/recorder/Film.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "platform/foundation/Fault.h"

namespace corvana::engine {
namespace {

namespace fs = std::filesystem;
using corvana::IDError;
using platform::AssetWriterCounters;
using platform::CMSampleBufferRef;
using platform::Fault;

bool holdsFilesOf(const std::string& stem, const fs::path& folder) {
  std::error_code ignored;  // A folder that can't be read is the writer's to complain of.
  return std::ranges::any_of(fs::directory_iterator(folder, ignored), [&](const auto& entry) {
    return entry.path().filename().string().starts_with(stem + ".");
  });
}

std::string freeStem(const fs::path& folder) {
  std::string stem = "film";
  for (int number = 2; holdsFilesOf(stem, folder); ++number)
    stem = "film" + std::to_string(number);
  return stem;
}

AssetWriterCounters sum(const AssetWriterCounters& films, AssetWriterCounters last) {
  last.videoFramesReceived += films.videoFramesReceived;
  last.videoFramesWritten += films.videoFramesWritten;
  last.videoFramesDropped += films.videoFramesDropped;
  last.videoFramesLate += films.videoFramesLate;
  last.audioBuffersReceived += films.audioBuffersReceived;
  last.audioBuffersDropped += films.audioBuffersDropped;
  return last;
}

}  // namespace

Film::Film(platform::RunLoop& loop, platform::AssetWriterFactory& factory, FilmSettings settings)
    : loop_(loop),
      factory_(factory),
      settings_(std::move(settings)),
      stem_(freeStem(settings_.folder)),
      queue_(loop.makeSerialQueue("FilmQueue")) {}

platform::Expected<std::shared_ptr<Film>> Film::make(platform::RunLoop& loop,
                                                     platform::AssetWriterFactory& factory,
                                                     FilmSettings settings) {
  std::shared_ptr<Film> film(new Film(loop, factory, std::move(settings)));
  if (auto error = film->open()) return tl::unexpected(std::move(*error));
  return film;
}

std::optional<Fault> Film::open() {
  auto writer = factory_.make(partial(), settings_.video, settings_.audio);
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

bool Film::takes(const platform::CMSampleBuffer& sample, int waiting) {
  const auto before = pace_.limit();
  const bool taken = pace_.takes(sample.presentationTime, waiting);
  const auto limit = pace_.limit();
  if (limit != before && settings_.onPace)
    loop_.mainQueue().async([self = shared_from_this(), limit] { self->settings_.onPace(limit); });
  return taken;
}

void Film::writeVideo(const CMSampleBufferRef& sample) {
  const Writer writer = currentWriter();
  if (!writer || !takes(*sample, writer->framesWaiting())) return;
  if (!writer->appendVideo(sample)) tellFaultOf(writer);
}

void Film::writeAudio(const CMSampleBufferRef& sample) {
  const Writer writer = currentWriter();
  if (writer && !writer->appendAudio(sample)) tellFaultOf(writer);
}

int Film::framesWaiting() const {
  const Writer writer = currentWriter();
  return writer ? writer->framesWaiting() : 0;
}

void Film::tellFaultOf(const Writer& writer) {
  const auto fault = writer->fault();
  // The answer of a stop or the next film speaks for one that was closed meanwhile.
  if (fault && writer == currentWriter()) tell(*fault);
}

void Film::tell(const Fault& fault) {
  loop_.mainQueue().async([self = shared_from_this(), fault] {
    if (std::exchange(self->faultTold_, true)) return;
    if (self->settings_.onFault) self->settings_.onFault(fault);
  });
}

platform::Expected<void> Film::close(platform::AssetWriter& writer) {
  auto finished = writer.finish();
  const std::lock_guard lock(mutex_);
  counters_ = sum(counters_, writer.counters());
  return finished;
}

Film::Outcome Film::finish(platform::AssetWriter& writer) {
  if (const auto closed = close(writer); !closed) return tl::unexpected(IDError(closed.error()));
  std::error_code error;
  fs::rename(partial(), complete(), error);
  if (error) {
    return tl::unexpected(
        IDError(Fault{"The film could not be given its name in \"" + settings_.folder.string() +
                          "\": " + error.message() + "; check the folder.",
                      platform::FaultCause::folderLost}));
  }
  return complete();
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
  const std::string kept = stem_ + ".run" + std::to_string(failedRuns_) + ".mp4";
  std::error_code error;
  for (const auto& film : {complete(), partial()}) {
    if (!fs::exists(film, error)) continue;
    if (settings_.keepFailedRuns) {
      fs::rename(film, settings_.folder / kept, error);
    } else {
      fs::remove(film, error);
    }
  }
  if (!settings_.keepFailedRuns) return;
  const std::lock_guard lock(mutex_);
  keptRuns_.push_back(kept);
}

void Film::restart() {
  queue_->async([self = shared_from_this(), writer = takeWriter()] {
    if (writer) self->finish(*writer);
    self->putFailedRunAway();
    if (const auto fault = self->open()) self->tell(*fault);
  });
}

void Film::abandon(platform::Block completion) {
  // The queue's block owns the writer: closing a file takes time, and the caller may be going.
  queue_->async(
      [self = shared_from_this(), writer = takeWriter(), completion = std::move(completion)] {
        if (writer) self->close(*writer);
        if (completion) self->loop_.mainQueue().async(completion);
      });
}

AssetWriterCounters Film::counters() const {
  const std::lock_guard lock(mutex_);
  return writer_ ? sum(counters_, writer_->counters()) : counters_;
}

std::vector<std::string> Film::fileNames() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> names = keptRuns_;
  names.push_back(complete().filename().string());
  names.push_back(partial().filename().string());
  return names;
}

}  // namespace corvana::engine
