#include "devices/gstreamer/FilmWriter.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "devices/gstreamer/Mp4Dates.h"

namespace devices {

using platform::Fault;
using platform::FaultCause;

namespace {

/// Three seconds at the usual rate.
constexpr int kFramesWaitingRealTime = 90;
/// The caller waits anyway: no more than what keeps the encoder busy.
constexpr int kFramesWaitingVirtual = 16;
constexpr int kLeastSize = 16;
constexpr int kMostSize = 4096;
constexpr std::int64_t kSamplesPerAacFrame = 1024;
constexpr platform::Duration kUsualFrame = std::chrono::nanoseconds(33'333'333);

platform::Duration durationOf(const platform::CMSampleBuffer& sample) {
  return sample.duration > platform::Duration::zero() ? sample.duration : kUsualFrame;
}

std::string sizeText(int width, int height) {
  return std::to_string(width) + "x" + std::to_string(height);
}

}  // namespace

FilmWriter::FilmWriter(bool dropsWhenFull, FilmFormat format)
    : dropsWhenFull_(dropsWhenFull),
      format_(std::move(format)),
      sound_(std::max(format_.sampleRate, 1), std::max(format_.channels, 1)) {}

FilmWriter::~FilmWriter() = default;

bool FilmWriter::fail(std::string sentence) {
  return fail(Fault{std::move(sentence), FaultCause::filmFailed});
}

bool FilmWriter::fail(Fault fault) {
  if (!fault_) fault_ = std::move(fault);
  return false;
}

bool FilmWriter::isOpen() {
  if (pipeline_ && !fault_) fault_ = pipeline_->error();
  return !fault_ && !outcome_;
}

bool FilmWriter::appendVideo(const platform::CMSampleBufferRef& sample) {
  const std::lock_guard lock(mutex_);
  ++counters_.videoFramesReceived;
  if (!isOpen() || !accepts(*sample)) return false;
  if (!pipeline_ && !begin(*sample)) return false;
  const bool isLate = counters_.videoFramesWritten > 0 && sample->presentationTime <= lastFrame_;
  if (isLate || !hasRoom()) {
    ++counters_.videoFramesDropped;
    return isOpen();
  }
  write(*sample);
  return isOpen();
}

bool FilmWriter::accepts(const platform::CMSampleBuffer& sample) {
  if (!sample.image) return fail("The camera delivered a sample without a picture.");
  const int width = sample.image->width();
  const int height = sample.image->height();
  if (std::min(width, height) < kLeastSize || std::max(width, height) > kMostSize) {
    return fail("The camera's picture of " + sizeText(width, height) +
                " can't be filmed: it must be " + std::to_string(kLeastSize) + " to " +
                std::to_string(kMostSize) + " pixels wide and high.");
  }
  if (!pipeline_) return true;
  if (width != format_.width || height != format_.height ||
      sample.image->format() != format_.pixelFormat) {
    return fail("The camera's picture changed from " + sizeText(format_.width, format_.height) +
                " to " + sizeText(width, height) + " while it was filmed.");
  }
  if (sample.presentationTime - origin_ > FilmPipeline::kLongestFilm) {
    return fail("The film " + format_.path.string() + " has reached its longest duration of " +
                std::to_string(FilmPipeline::kLongestFilm / std::chrono::minutes(1)) + " minutes.");
  }
  return true;
}

bool FilmWriter::begin(const platform::CMSampleBuffer& sample) {
  format_.width = sample.image->width();
  format_.height = sample.image->height();
  format_.pixelFormat = sample.image->format();
  const double rate = 1 / platform::inSeconds(durationOf(sample));
  format_.framesPerSecond = static_cast<int>(std::clamp(std::round(rate), 1.0, 120.0));
  auto pipeline = FilmPipeline::start(format_);
  if (!pipeline) return fail(pipeline.error());
  pipeline_ = std::move(*pipeline);
  origin_ = sample.presentationTime;
  sound_.begin(origin_);
  return true;
}

bool FilmWriter::hasRoom() {
  if (!dropsWhenFull_) return pipeline_->waitForRoom(kFramesWaitingVirtual);
  return pipeline_->framesWaiting() < kFramesWaitingRealTime;
}

void FilmWriter::write(const platform::CMSampleBuffer& sample) {
  const platform::Duration time = sample.presentationTime - origin_;
  lastFrame_ = sample.presentationTime;
  pictureEnd_ = time + durationOf(sample);
  writeSound();
  pipeline_->pushVideo(sample.image, time, durationOf(sample));
  ++counters_.videoFramesWritten;
}

void FilmWriter::writeSound() {
  if (!format_.hasAudio) return;
  const std::int64_t position = sound_.position();
  pipeline_->pushAudio(sound_.take(pictureEnd_), position);
}

bool FilmWriter::appendAudio(const platform::CMSampleBufferRef& sample) {
  const std::lock_guard lock(mutex_);
  ++counters_.audioBuffersReceived;
  if (!isOpen()) return false;
  if (!format_.hasAudio) return true;
  if (sample->sampleRate != format_.sampleRate || sample->channels != format_.channels) {
    return fail("The microphone delivers " + std::to_string(sample->sampleRate) + " Hz in " +
                std::to_string(sample->channels) + " channels, the film was set up for " +
                std::to_string(format_.sampleRate) + " Hz in " + std::to_string(format_.channels) +
                ".");
  }
  sound_.add(*sample);
  if (pipeline_) writeSound();
  return true;
}

tl::expected<void, Fault> FilmWriter::finish() {
  const std::lock_guard lock(mutex_);
  if (!outcome_) outcome_ = close();
  return *outcome_;
}

tl::expected<void, Fault> FilmWriter::close() {
  if (!pipeline_) {
    std::error_code ignored;
    std::filesystem::remove(format_.path, ignored);
    fail("The film " + format_.path.string() + " is empty: the camera delivered no picture.");
    return tl::unexpected(*fault_);
  }
  if (format_.hasAudio) {
    const std::int64_t frames =
        sound_.framesIn(pictureEnd_) / kSamplesPerAacFrame * kSamplesPerAacFrame;
    const std::int64_t position = sound_.position();
    pipeline_->pushAudio(sound_.takeRest(frames), position);
  }
  auto closed = pipeline_->finish().and_then([&] { return clearDates(format_.path); });
  pipeline_.reset();
  if (fault_) return tl::unexpected(*fault_);
  return closed;
}

void FilmWriter::cancel() {
  const std::lock_guard lock(mutex_);
  pipeline_.reset();
  std::error_code ignored;
  std::filesystem::remove(format_.path, ignored);
  if (!outcome_) {
    outcome_ = tl::unexpected(
        Fault{"The film " + format_.path.string() + " was cancelled.", FaultCause::canceled});
  }
}

std::optional<Fault> FilmWriter::fault() const {
  const std::lock_guard lock(mutex_);
  return fault_;
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

}  // namespace devices
