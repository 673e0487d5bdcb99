#include "devices/film/FilmWriter.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "devices/film/FilmPipeline.h"
#include "devices/film/FilmRemux.h"
#include "platform/foundation/Fault.h"

namespace corvana::devices {

using platform::Fault;
using platform::FaultCause;

namespace {

/// Three seconds at the usual rate.
constexpr int kFramesWaitingRealTime = 90;
/// The caller waits anyway: enough to keep the encoder busy while a card is looked at, and fewer
/// than make a film's pictures come more slowly.
constexpr int kFramesWaitingVirtual = 12;
constexpr std::int64_t kSamplesPerAacFrame = 1024;
/// The muxer writes a fragment every half second: what it has written waits no longer for the disk.
constexpr platform::Duration kSyncPeriod = std::chrono::milliseconds(250);
/// Three frames at the usual rate: more is not the camera's own delay.
constexpr platform::Duration kLate = std::chrono::milliseconds(100);
constexpr platform::Duration kUsualFrame = std::chrono::nanoseconds(33'333'333);

platform::Duration durationOf(const platform::CMSampleBuffer& sample) {
  return sample.duration > platform::Duration::zero() ? sample.duration : kUsualFrame;
}

}  // namespace

FilmWriter::FilmWriter(const platform::RunLoop& loop, FilmFormat format,
                       std::shared_ptr<FilmFile> file, WallClock wallClock,
                       std::shared_ptr<FilmWitness> witness)
    : loop_(loop),
      wallClock_(std::move(wallClock)),
      format_(std::move(format)),
      file_(std::move(file)),
      witness_(std::move(witness)),
      converter_(format_.sampleRate, format_.channels),
      sound_(std::max(format_.sampleRate, 1), std::max(format_.channels, 1)) {}

FilmWriter::~FilmWriter() = default;

bool FilmWriter::fail(Fault fault) {
  if (!fault_) fault_ = std::move(fault);
  return false;
}

std::optional<Fault> FilmWriter::currentFault() const {
  if (fault_) return fault_;
  if (pipeline_ && pipeline_->error()) return pipeline_->error();
  return isEnding_ ? std::nullopt : file_->fault();
}

bool FilmWriter::isOpen() {
  fault_ = currentFault();
  return !fault_ && !isEnding_;
}

bool FilmWriter::appendVideo(const platform::CMSampleBufferRef& sample) {
  const std::lock_guard lock(mutex_);
  ++counters_.videoFramesReceived;
  if (!loop_.isVirtual() && loop_.now() - sample->presentationTime > kLate) {
    ++counters_.videoFramesLate;
  }
  if (!isOpen() || !accepts(*sample)) return false;
  if (!pipeline_ && !begin(*sample)) return false;
  const bool isOld = counters_.videoFramesWritten > 0 && sample->presentationTime <= lastFrame_;
  if (isOld || !hasRoom()) {
    ++counters_.videoFramesDropped;
    return isOpen();
  }
  write(*sample);
  return isOpen();
}

bool FilmWriter::accepts(const platform::CMSampleBuffer& sample) {
  if (!sample.image) {
    return fail({"The camera delivered a sample without a picture.", FaultCause::filmFailed});
  }
  const int width = sample.image->width();
  const int height = sample.image->height();
  if (isFilmSize(width) && isFilmSize(height)) return true;
  return fail({"The camera's picture of " + std::to_string(width) + "x" + std::to_string(height) +
                   " can't be filmed: it must be " + std::to_string(kLeastFilmSize) + " to " +
                   std::to_string(kMostFilmSize) + " pixels wide and high.",
               FaultCause::filmFailed});
}

bool FilmWriter::begin(const platform::CMSampleBuffer& sample) {
  if (format_.width == 0) {
    format_.width = even(sample.image->width());
    format_.height = even(sample.image->height());
  }
  const double rate = 1 / platform::inSeconds(durationOf(sample));
  format_.framesPerSecond = static_cast<int>(std::clamp(std::round(rate), 1.0, 120.0));
  if (witness_) witness_->began(sample.presentationTime, format_.hasAudio);
  auto pipeline = FilmPipeline::start(format_, file_, witness_);
  if (!pipeline) return fail(pipeline.error());
  pipeline_ = std::move(*pipeline);
  created_ = wallClock_();
  origin_ = sample.presentationTime;
  sound_.begin(origin_);
  return true;
}

bool FilmWriter::hasRoom() {
  if (loop_.isVirtual()) return pipeline_->waitForRoom(kFramesWaitingVirtual);
  return pipeline_->framesWaiting() < kFramesWaitingRealTime;
}

void FilmWriter::write(const platform::CMSampleBuffer& sample) {
  const platform::Duration time = sample.presentationTime - origin_;
  lastFrame_ = sample.presentationTime;
  pictureEnd_ = time + durationOf(sample);
  writeSound();
  pipeline_->pushVideo(sample.image, time, durationOf(sample));
  ++counters_.videoFramesWritten;
  syncSoon();
}

void FilmWriter::syncSoon() {
  const platform::TimePoint now = loop_.now();
  if (lastSync_ && now - *lastSync_ < kSyncPeriod) return;
  lastSync_ = now;
  file_->syncSoon();
}

void FilmWriter::writeSound() {
  if (!format_.hasAudio) return;
  const std::int64_t position = sound_.position();
  pipeline_->pushAudio(sound_.take(lastFrame_ - origin_, pictureEnd_), position);
}

bool FilmWriter::appendAudio(const platform::CMSampleBufferRef& sample) {
  const std::lock_guard lock(mutex_);
  ++counters_.audioBuffersReceived;
  if (!isOpen()) return false;
  if (!format_.hasAudio) return true;
  const platform::CMSampleBufferRef sound = converter_.convert(sample);
  if (!sound) {
    ++counters_.audioBuffersDropped;
    return true;
  }
  sound_.add(*sound);
  if (!pipeline_) return true;
  writeSound();
  syncSoon();
  return true;
}

void FilmWriter::pushLastSound() {
  if (!format_.hasAudio) return;
  const std::int64_t frames =
      sound_.framesIn(pictureEnd_) / kSamplesPerAacFrame * kSamplesPerAacFrame;
  const std::int64_t position = sound_.position();
  pipeline_->pushAudio(sound_.takeRest(frames), position);
}

FilmWriter::Outcome FilmWriter::finish() {
  const std::lock_guard end(endMutex_);
  if (!outcome_) outcome_ = close();
  return *outcome_;
}

FilmWriter::Outcome FilmWriter::close() {
  {
    const std::lock_guard lock(mutex_);
    fault_ = currentFault();
    isEnding_ = true;
    if (!pipeline_) {
      removeFile();
      fail({"The film " + file_->path().string() + " is empty: the camera delivered no picture.",
            FaultCause::filmFailed});
      return tl::unexpected(*fault_);
    }
    pushLastSound();
  }
  // Samples are turned away from here on; their threads must not wait for the disk.
  const Outcome closed = pipeline_->finish()
                             .and_then([&]() -> Outcome {
                               if (witness_) witness_->ended();
                               return file_->sync();
                             })
                             .and_then([&] { return remuxFilm(file_->path(), created_); });
  const std::lock_guard lock(mutex_);
  pipeline_.reset();
  if (!closed) fail(closed.error());
  if (fault_) return tl::unexpected(*fault_);
  return {};
}

void FilmWriter::removeFile() {
  std::error_code ignored;
  std::filesystem::remove(file_->path(), ignored);
}

std::optional<Fault> FilmWriter::fault() const {
  const std::lock_guard lock(mutex_);
  return currentFault();
}

int FilmWriter::framesWaiting() const {
  const std::lock_guard lock(mutex_);
  return pipeline_ ? pipeline_->framesWaiting() : 0;
}

platform::AssetWriterCounters FilmWriter::counters() const {
  const std::lock_guard lock(mutex_);
  platform::AssetWriterCounters counters = counters_;
  counters.secondsWritten = platform::inSeconds(pictureEnd_);
  counters.secondsOfSilence = sound_.secondsOfSilenceAtStart();
  return counters;
}

FilmWriterFactory::FilmWriterFactory(platform::RunLoop& loop)
    : FilmWriterFactory(loop, [isVirtual = loop.isVirtual()] {
        return isVirtual ? CreationTime() : std::chrono::system_clock::now();
      }) {}

FilmWriterFactory::FilmWriterFactory(platform::RunLoop& loop, WallClock wallClock)
    : loop_(loop),
      wallClock_(std::move(wallClock)),
      diskQueue_(loop.makeSerialQueue("FilmDisk", platform::QualityOfService::utility)) {}

platform::Expected<std::shared_ptr<platform::AssetWriter>> FilmWriterFactory::make(
    const std::filesystem::path& path, const std::optional<platform::WriterSettings>& video,
    const std::optional<platform::WriterSettings>& audio) {
  auto format = filmFormat(video, audio);
  if (!format) return platform::failure(format.error().sentence, platform::FaultCause::filmFailed);
  auto file = FilmFile::create(path, diskQueue_);
  if (!file) return tl::unexpected(file.error());
  return std::make_shared<FilmWriter>(loop_, std::move(*format), std::move(*file), wallClock_,
                                      witnesses_ ? witnesses_() : nullptr);
}

}  // namespace corvana::devices
