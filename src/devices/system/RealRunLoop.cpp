#include "devices/system/RealRunLoop.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <mutex>
#include <utility>

#include <sys/resource.h>
#include <unistd.h>

namespace corvana::devices {

using platform::Block;
using platform::Duration;
using platform::QualityOfService;
using platform::TimePoint;

namespace {

/// As many as there are kinds of such work: looking, reading cards and listening.
constexpr int kUtilityWorkers = 3;
/// Lets encoders and the camera go first, and still leaves half a share of a core beside programs
/// that never rest: with a niceness of ten, four of them made one look at a card last ten seconds.
constexpr int kUtilityNiceness = 3;

}  // namespace

class RealRunLoop::TimelineQueue final : public platform::DispatchQueue {
 public:
  explicit TimelineQueue(BlockTimeline& timeline) : timeline_(timeline) {}
  void async(Block block) override { timeline_.postAfter(Duration::zero(), std::move(block)); }
  void asyncAfter(Duration delay, Block block) override {
    timeline_.postAfter(delay, std::move(block));
  }

 private:
  BlockTimeline& timeline_;
};

/// Keeps its blocks in order and asks the workers for one turn at a time.
class RealRunLoop::SerialQueue final : public platform::DispatchQueue,
                                       public std::enable_shared_from_this<SerialQueue> {
 public:
  explicit SerialQueue(BlockTimeline& workers) : workers_(workers) {}

  void async(Block block) override {
    {
      const std::lock_guard lock(mutex_);
      waiting_.push_back(std::move(block));
      if (std::exchange(busy_, true)) return;
    }
    requestTurn();
  }
  void asyncAfter(Duration delay, Block block) override {
    workers_.postAfter(delay, [self = shared_from_this(), block = std::move(block)]() mutable {
      self->async(std::move(block));
    });
  }
  /// Destroys the blocks that have not begun; false when there were none.
  bool clear() {
    std::deque<Block> left;
    {
      const std::lock_guard lock(mutex_);
      left.swap(waiting_);
    }
    return !left.empty();
  }

 private:
  void requestTurn() {
    workers_.postAfter(Duration::zero(), [self = shared_from_this()] { self->runOne(); });
  }
  void runOne() {
    Block block;
    {
      const std::lock_guard lock(mutex_);
      block = std::move(waiting_.front());
      waiting_.pop_front();
    }
    block();
    block = nullptr;
    const std::lock_guard lock(mutex_);
    busy_ = !waiting_.empty();
    if (busy_) requestTurn();
  }

  BlockTimeline& workers_;
  std::mutex mutex_;
  std::deque<Block> waiting_;
  bool busy_ = false;
};

RealRunLoop::RealRunLoop(int workers)
    : main_(std::chrono::steady_clock::now()),
      shared_(main_.origin()),
      utility_(main_.origin()),
      device_(main_.origin()),
      mainQueue_(std::make_unique<TimelineQueue>(main_)),
      globalQueue_(std::make_unique<TimelineQueue>(shared_)),
      utilityQueue_(std::make_unique<TimelineQueue>(utility_)),
      timers_([this] { return now(); },
              [this](TimePoint due, Block block) {
                main_.post(due, platform::EventClass::task, std::move(block));
              }) {
  startThread(device_);
  for (int i = 0; i < std::max(workers, 1); ++i)
    startThread(shared_);
  for (int i = 0; i < kUtilityWorkers; ++i)
    startThread(utility_, kUtilityNiceness);
}

RealRunLoop::~RealRunLoop() {
  shutDown();
}

BlockTimeline& RealRunLoop::workersFor(QualityOfService qos) {
  const bool yields = qos == QualityOfService::utility || qos == QualityOfService::background;
  return yields ? utility_ : shared_;
}

void RealRunLoop::startThread(BlockTimeline& timeline, int niceness) {
  threads_.emplace_back([&timeline, niceness] {
    // The kernel takes a thread for a process here. Without leave for it all stays as it was.
    if (niceness != 0) setpriority(PRIO_PROCESS, 0, getpriority(PRIO_PROCESS, 0) + niceness);
    while (!timeline.isClosed()) {
      if (const Block block = timeline.take(TimePoint::max())) block();
    }
  });
}

platform::DispatchQueue& RealRunLoop::globalQueue(QualityOfService qos) {
  return &workersFor(qos) == &utility_ ? *utilityQueue_ : *globalQueue_;
}

std::shared_ptr<platform::DispatchQueue> RealRunLoop::makeSerialQueue(const std::string&,
                                                                      QualityOfService qos) {
  auto queue = std::make_shared<SerialQueue>(workersFor(qos));
  std::erase_if(serialQueues_, [](const auto& other) { return other.expired(); });
  serialQueues_.push_back(queue);
  return queue;
}

std::shared_ptr<platform::Timer> RealRunLoop::scheduledTimer(Duration interval, bool repeats,
                                                             Block block) {
  return timers_.schedule(interval, repeats, std::move(block));
}

void RealRunLoop::scheduleDevice(TimePoint time, platform::EventClass eventClass, Block block) {
  device_.post(time, eventClass, std::move(block));
}

RealRunLoop::Stop RealRunLoop::runUntil(const std::function<bool()>& done, TimePoint deadline) {
  while (!done()) {
    if (const Block block = main_.take(deadline)) {
      block();
    } else if (now() >= deadline) {
      return Stop::deadline;
    }
  }
  return Stop::condition;
}

bool RealRunLoop::runOneDue() {
  const Block block = main_.take(now());
  if (block) block();
  return static_cast<bool>(block);
}

void RealRunLoop::shutDown() {
  shared_.close();
  utility_.close();
  device_.close();
  for (std::thread& thread : threads_)
    thread.join();
  threads_.clear();
  timers_.invalidateAll();
  // A destroyed block may let go of the last handle to something that posts once more.
  bool any = true;
  while (any) {
    any = device_.clear();
    any = shared_.clear() || any;
    any = utility_.clear() || any;
    any = main_.clear() || any;
    // What waits in a queue often owns the queue.
    for (const auto& weak : serialQueues_) {
      const auto queue = weak.lock();
      any = (queue && queue->clear()) || any;
    }
  }
}

}  // namespace corvana::devices
