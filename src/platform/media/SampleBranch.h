#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "platform/foundation/RunLoop.h"
#include "platform/media/SampleBuffer.h"

namespace corvana::platform {

/// One branch of the way that samples take from a device: they wait, as many as the branch holds,
/// for a consumer on a queue of its own, so that a slow one neither holds up the device nor the
/// other branches. Any thread.
class SampleBranch final : public std::enable_shared_from_this<SampleBranch> {
 public:
  /// What becomes of a sample that finds the branch full.
  enum class WhenFull {
    keepsOldest,  ///< it is dropped: what was recorded stays in one piece
    keepsNewest,  ///< it takes the place of the oldest: what is shown is of now
  };
  using Consumer = std::function<void(const CMSampleBufferRef& sample)>;

  SampleBranch(std::shared_ptr<DispatchQueue> queue, std::size_t capacity, WhenFull whenFull,
               Consumer consumer);

  void push(CMSampleBufferRef sample);
  std::uint64_t samplesDropped() const { return dropped_; }

 private:
  void handOne();

  const std::shared_ptr<DispatchQueue> queue_;
  const std::size_t capacity_;
  const WhenFull whenFull_;
  const Consumer consumer_;
  std::atomic<std::uint64_t> dropped_ = 0;
  std::mutex mutex_;
  std::deque<CMSampleBufferRef> waiting_;  ///< guarded by mutex_; a block of the queue for each
};

}  // namespace corvana::platform
