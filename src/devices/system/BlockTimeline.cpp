#include "devices/system/BlockTimeline.h"

#include <algorithm>
#include <utility>

namespace corvana::devices {

using platform::Block;
using platform::TimePoint;

namespace {

// A wait of any length is cut into these, so that far deadlines do not overflow the steady clock.
constexpr std::chrono::hours kLongestWait{1};

}  // namespace

TimePoint BlockTimeline::now() const {
  return TimePoint(
      std::chrono::duration_cast<platform::Duration>(std::chrono::steady_clock::now() - origin_));
}

void BlockTimeline::post(TimePoint due, platform::EventClass eventClass, Block block) {
  {
    const std::lock_guard lock(mutex_);
    insert(due, eventClass, std::move(block));
  }
  if (onPost_) onPost_();
}

void BlockTimeline::postAfter(platform::Duration delay, Block block) {
  {
    const std::lock_guard lock(mutex_);
    insert(now() + std::max(delay, platform::Duration::zero()), platform::EventClass::task,
           std::move(block));
  }
  if (onPost_) onPost_();
}

void BlockTimeline::insert(TimePoint due, platform::EventClass eventClass, Block block) {
  blocks_.emplace(Key{due, eventClass, sequence_++}, std::move(block));
  changed_.notify_one();
}

Block BlockTimeline::take(TimePoint deadline) {
  std::unique_lock lock(mutex_);
  while (!closed_ && !std::exchange(interrupted_, false)) {
    const TimePoint present = now();
    const bool any = !blocks_.empty();
    const TimePoint due = any ? std::get<TimePoint>(blocks_.begin()->first) : TimePoint::max();
    if (due <= present && due <= deadline)
      return std::move(blocks_.extract(blocks_.begin()).mapped());
    if (deadline <= present) break;
    const TimePoint wakeUp = std::min({due, deadline, present + kLongestWait});
    changed_.wait_until(lock, origin_ + wakeUp.time_since_epoch());
  }
  return nullptr;
}

std::optional<TimePoint> BlockTimeline::nextDue() {
  const std::lock_guard lock(mutex_);
  if (blocks_.empty()) return std::nullopt;
  return std::get<TimePoint>(blocks_.begin()->first);
}

void BlockTimeline::interrupt() {
  const std::lock_guard lock(mutex_);
  interrupted_ = true;
  changed_.notify_all();
}

void BlockTimeline::close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  changed_.notify_all();
}

bool BlockTimeline::clear() {
  std::map<Key, Block> left;
  {
    const std::lock_guard lock(mutex_);
    left.swap(blocks_);
  }
  // Destroyed without the lock: a block may own what posts again.
  return !left.empty();
}

}  // namespace corvana::devices
