#include "devices/recorded/FileCamera.h"

#include <algorithm>
#include <utility>

namespace corvana::devices {
namespace {

/// In real time a picture this late would only make the next ones late too.
constexpr platform::Duration kTooLate = std::chrono::milliseconds(250);
/// A machine that never catches up still shows every fifth picture.
constexpr int kMostDroppedInARow = 4;

}  // namespace

FileCamera::FileCamera(platform::RunLoop& loop, std::shared_ptr<FileTimeline> timeline,
                       const MediaInfo& info, std::unique_ptr<VideoReader> reader,
                       VideoReader::Picture first, VideoCodecChoice codecChoice, Reports reports)
    : FilmingCamera(codecChoice),
      loop_(loop),
      timeline_(std::move(timeline)),
      info_(info),
      reader_(std::move(reader)),
      reports_(std::move(reports)),
      next_(std::move(first)) {}

bool FileCamera::open() {
  const std::lock_guard lock(mutex_);
  return !error_;
}

void FileCamera::start(SampleHandler handler) {
  const platform::TimePoint now = loop_.now();
  const platform::TimePoint origin = timeline_->begin(now);
  const std::lock_guard lock(mutex_);
  if (handler_) return;
  handler_ = std::move(handler);
  origin_ = origin;
  ++run_;
  if (!current_ && !over_) advance();
  skipTo(now - origin_);
  schedule();
}

void FileCamera::stop() {
  const std::lock_guard lock(mutex_);
  handler_ = nullptr;
  ++run_;
}

platform::Duration FileCamera::durationOfCurrent() const {
  if (next_) return next_->time - current_->time;
  return platform::seconds(1 / info_.frameRate);
}

void FileCamera::advance() {
  current_ = std::exchange(next_, std::nullopt);
  if (!current_ || error_) return;
  auto picture = reader_->next();
  if (picture) {
    next_ = std::move(*picture);
  } else {
    error_ = picture.error();
  }
}

void FileCamera::skipTo(platform::Duration place) {
  while (current_ && current_->time + durationOfCurrent() <= place) {
    if (!next_) endAfter(place);
    advance();
  }
}

void FileCamera::schedule() {
  if (!current_) return;
  loop_.scheduleDevice(origin_ + current_->time, platform::EventClass::frame,
                       [weak = weak_from_this(), run = run_] {
                         const auto self = weak.lock();
                         if (!self) return;
                         const std::lock_guard lock(self->mutex_);
                         if (run == self->run_) self->deliver();
                       });
}

bool FileCamera::isTooLate() {
  const bool late = !loop_.isVirtual() && loop_.now() - (origin_ + current_->time) > kTooLate;
  droppedInARow_ = late && droppedInARow_ < kMostDroppedInARow ? droppedInARow_ + 1 : 0;
  return droppedInARow_ > 0;
}

void FileCamera::deliver() {
  const bool dropped = isTooLate();
  auto sample = std::make_shared<platform::CMSampleBuffer>();
  sample->presentationTime = origin_ + current_->time;
  sample->duration = durationOfCurrent();
  sample->image = current_->image;
  if (!next_) endAfter(current_->time + sample->duration);
  advance();
  schedule();
  // Last, since the handler may stop or restart this camera; a copy, since that replaces it.
  if (dropped) {
    ++framesDropped_;
  } else {
    const SampleHandler handler = handler_;
    handler(std::move(sample));
  }
}

void FileCamera::endAfter(platform::Duration lastFrame) {
  over_ = true;
  loop_.scheduleDevice(origin_ + lastFrame, platform::EventClass::frame, [weak = weak_from_this()] {
    const auto self = weak.lock();
    if (!self) return;
    if (self->error_) {
      self->reports_.error(*self->error_);
    } else {
      self->reports_.end();
    }
  });
}

}  // namespace corvana::devices
