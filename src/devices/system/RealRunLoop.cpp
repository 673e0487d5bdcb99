#include "devices/system/RealRunLoop.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <mutex>
#include <utility>

#include <sys/resource.h>
#include <unistd.h>

namespace devices {

using platform::Block;
using platform::Duration;
using platform::QualityOfService;
using platform::TimePoint;

namespace {

/// As many as there are kinds of such work: looking and listening.
constexpr int kUtilityWorkers = 2;
/// Leaves a busy core's time to encoders at a tenth for itself.
constexpr int kUtilityNiceness = 10;

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

class RealRunLoop::MainTimer final : public platform::Timer,
                                     public std::enable_shared_from_this<MainTimer> {
 public:
  MainTimer(BlockTimeline& main, Duration interval, bool repeats, Block block)
      : main_(main),
        interval_(std::max(interval, Duration(1))),
        repeats_(repeats),
        block_(std::move(block)) {}

  void schedule(TimePoint due) {
    main_.post(due, platform::EventClass::task,
               [self = shared_from_this(), due] { self->fire(due); });
  }
  void invalidate() override { block_ = nullptr; }
  bool isValid() const override { return static_cast<bool>(block_); }

 private:
  void fire(TimePoint due) {
    if (!block_) return;
    const Block block = repeats_ ? block_ : std::exchange(block_, nullptr);
    block();
    if (!isValid()) return;
    // Beats that were missed while the main queue was busy are left out.
    const auto missed = std::max<Duration::rep>((main_.now() - due) / interval_, 0);
    schedule(due + interval_ * (missed + 1));
  }

  BlockTimeline& main_;
  Duration interval_;
  bool repeats_;
  Block block_;
};

RealRunLoop::RealRunLoop(int workers)
    : main_(std::chrono::steady_clock::now()),
      shared_(main_.origin()),
      utility_(main_.origin()),
      device_(main_.origin()),
      mainQueue_(std::make_unique<TimelineQueue>(main_)),
      globalQueue_(std::make_unique<TimelineQueue>(shared_)),
      utilityQueue_(std::make_unique<TimelineQueue>(utility_)) {
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
    if (niceness != 0) setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), niceness);
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
  auto timer = std::make_shared<MainTimer>(main_, interval, repeats, std::move(block));
  timer->schedule(now() + std::max(interval, Duration::zero()));
  std::erase_if(timers_, [](const auto& other) { return other.expired(); });
  timers_.push_back(timer);
  return timer;
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
  // A timer's block may own the one who owns the timer.
  for (const auto& timer : std::exchange(timers_, {})) {
    if (const auto alive = timer.lock()) alive->invalidate();
  }
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

}  // namespace devices
