#include "platform/media/SampleBranch.h"

#include <utility>

namespace corvana::platform {

SampleBranch::SampleBranch(std::shared_ptr<DispatchQueue> queue, std::size_t capacity,
                           WhenFull whenFull, Consumer consumer)
    : queue_(std::move(queue)),
      capacity_(capacity),
      whenFull_(whenFull),
      consumer_(std::move(consumer)) {}

void SampleBranch::push(CMSampleBufferRef sample) {
  {
    const std::lock_guard lock(mutex_);
    if (waiting_.size() == capacity_) {
      ++dropped_;
      if (whenFull_ == WhenFull::keepsOldest) return;
      // The block that was posted for the oldest will hand over the next one.
      waiting_.pop_front();
      waiting_.push_back(std::move(sample));
      return;
    }
    waiting_.push_back(std::move(sample));
  }
  queue_->async([self = shared_from_this()] { self->handOne(); });
}

void SampleBranch::handOne() {
  CMSampleBufferRef sample;
  {
    const std::lock_guard lock(mutex_);
    sample = std::move(waiting_.front());
    waiting_.pop_front();
  }
  consumer_(sample);
}

}  // namespace corvana::platform
