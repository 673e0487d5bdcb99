#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <tuple>

#include "platform/foundation/RunLoop.h"

namespace corvana::devices {

/// Blocks in the order of their due times, waited for on the steady clock. Any thread.
class BlockTimeline {
 public:
  explicit BlockTimeline(std::chrono::steady_clock::time_point origin) : origin_(origin) {}

  std::chrono::steady_clock::time_point origin() const { return origin_; }
  platform::TimePoint now() const;
  void post(platform::TimePoint due, platform::EventClass eventClass, platform::Block block);
  /// Posts a block; those posted with equal delays run in posting order.
  void postAfter(platform::Duration delay, platform::Block block);
  /// Waits for a block that is due; null once `deadline` has come, after `interrupt` or `close`.
  platform::Block take(platform::TimePoint deadline);
  /// When the next block is due; absent when there is none.
  std::optional<platform::TimePoint> nextDue();
  /// Sets what is told, on any thread, of each block that is posted; before anything is posted.
  void setOnPost(platform::Block onPost) { onPost_ = std::move(onPost); }
  /// Makes a `take` that waits return, or else the next one.
  void interrupt();
  /// Ends the handing out: `take` gives nothing any more, and what is left waits for `clear`.
  void close();
  bool isClosed() const { return closed_; }
  /// Destroys the blocks that are left, on this thread; false when there were none.
  bool clear();

 private:
  using Key = std::tuple<platform::TimePoint, platform::EventClass, std::uint64_t>;

  void insert(platform::TimePoint due, platform::EventClass eventClass, platform::Block block);

  const std::chrono::steady_clock::time_point origin_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::map<Key, platform::Block> blocks_;
  std::uint64_t sequence_ = 0;
  platform::Block onPost_;
  bool interrupted_ = false;
  std::atomic<bool> closed_ = false;
};

}  // namespace corvana::devices
