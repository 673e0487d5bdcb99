#include "devices/recorded/FileMicrophone.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace corvana::devices {

FileMicrophone::FileMicrophone(platform::RunLoop& loop, std::shared_ptr<FileTimeline> timeline,
                               platform::Duration fileDuration, std::unique_ptr<AudioReader> reader,
                               std::function<void(platform::Fault)> error)
    : loop_(loop),
      timeline_(std::move(timeline)),
      fileDuration_(fileDuration),
      reader_(std::move(reader)),
      reportError_(std::move(error)) {}

bool FileMicrophone::open() {
  const std::lock_guard lock(mutex_);
  return !failed_;
}

void FileMicrophone::start(SampleHandler handler) {
  const std::lock_guard lock(mutex_);
  if (handler_ || failed_) return;
  handler_ = std::move(handler);
  ++run_;
  const auto origin = timeline_->originOr([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->follow();
  });
  if (origin) follow();
}

void FileMicrophone::stop() {
  const std::lock_guard lock(mutex_);
  handler_ = nullptr;
  ++run_;
}

void FileMicrophone::follow() {
  const platform::TimePoint now = loop_.now();
  const std::lock_guard lock(mutex_);
  if (!handler_) return;
  origin_ = timeline_->begin(now);
  const auto present = std::llround(platform::inSeconds(now - origin_) * AudioReader::kSampleRate);
  position_ = std::max<std::int64_t>(position_, present);
  ++run_;
  schedule();
}

platform::TimePoint FileMicrophone::instantOf(std::int64_t position) const {
  return origin_ + platform::Duration(position * 1'000'000'000 / AudioReader::kSampleRate);
}

void FileMicrophone::schedule() {
  loop_.scheduleDevice(instantOf(position_ + kBufferSamples), platform::EventClass::frame,
                       [weak = weak_from_this(), run = run_] {
                         const auto self = weak.lock();
                         if (!self) return;
                         const std::lock_guard lock(self->mutex_);
                         if (run == self->run_) self->deliver();
                       });
}

void FileMicrophone::deliver() {
  auto samples = reader_->read(position_, kBufferSamples);
  if (!samples) {
    failed_ = true;
    reportError_(samples.error());
    return;
  }
  if (reader_->hasEnded() && instantOf(position_) - origin_ >= fileDuration_) return;
  auto sample = std::make_shared<platform::CMSampleBuffer>();
  sample->presentationTime = instantOf(position_);
  sample->duration = instantOf(position_ + kBufferSamples) - instantOf(position_);
  sample->samples = std::move(*samples);
  sample->sampleRate = AudioReader::kSampleRate;
  sample->channels = 1;
  position_ += kBufferSamples;
  schedule();
  // Last, since the handler may stop or restart this microphone; a copy, since that replaces it.
  const SampleHandler handler = handler_;
  handler(std::move(sample));
}

}  // namespace corvana::devices
