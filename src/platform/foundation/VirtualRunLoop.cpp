#include "platform/foundation/VirtualRunLoop.h"

#include <algorithm>
#include <future>
#include <utility>

namespace corvana::platform {

/// All queues share the one line of events: posting order is the order of running.
class VirtualRunLoop::Queue final : public DispatchQueue {
 public:
  explicit Queue(VirtualRunLoop& loop) : loop_(loop) {}
  void async(Block block) override { loop_.post(loop_.now_, EventClass::task, std::move(block)); }
  void asyncAfter(Duration delay, Block block) override {
    loop_.post(loop_.now_ + std::max(delay, Duration::zero()), EventClass::task, std::move(block));
  }

 private:
  VirtualRunLoop& loop_;
};

/// The outcome is an event like any other: when it comes does not tell how long the work took.
class VirtualRunLoop::DelayedWork final : public WorkQueue {
 public:
  DelayedWork(VirtualRunLoop& loop, Duration delay, std::shared_ptr<DispatchQueue> workers)
      : loop_(loop), delay_(delay), workers_(std::move(workers)) {}

  void async(Work work) override {
    const auto task = std::make_shared<std::packaged_task<Block()>>(std::move(work));
    const auto outcome = std::make_shared<std::future<Block>>(task->get_future());
    if (workers_) {
      workers_->async([task] { (*task)(); });
    } else {
      (*task)();
    }
    loop_.post(loop_.now_ + delay_, EventClass::task, [outcome] {
      if (const Block block = outcome->get()) block();
    });
  }

 private:
  VirtualRunLoop& loop_;
  Duration delay_;
  std::shared_ptr<DispatchQueue> workers_;
};

namespace {

constexpr std::uint64_t kMostSteps = 50'000'000;

}  // namespace

VirtualRunLoop::VirtualRunLoop(std::unique_ptr<DrivenLoop> workers)
    : workers_(std::move(workers)),
      timers_(
          [this] { return now_; },
          [this](TimePoint due, Block block) { post(due, EventClass::task, std::move(block)); }),
      queue_(std::make_shared<Queue>(*this)) {}

VirtualRunLoop::~VirtualRunLoop() {
  shutDown();
}

void VirtualRunLoop::shutDown() {
  timers_.invalidateAll();
  if (workers_) workers_->shutDown();
  // A block may own the last handle to something that posts while it is destroyed.
  while (!events_.empty())
    std::exchange(events_, {}).clear();
}

DispatchQueue& VirtualRunLoop::mainQueue() {
  return *queue_;
}

DispatchQueue& VirtualRunLoop::globalQueue(QualityOfService) {
  return *queue_;
}

std::shared_ptr<DispatchQueue> VirtualRunLoop::makeSerialQueue(const std::string&,
                                                               QualityOfService) {
  return queue_;
}

/// Nobody uses the loop's thread while it waits for an outcome: no work yields to another.
std::shared_ptr<WorkQueue> VirtualRunLoop::makeWorkQueue(const std::string& label, QualityOfService,
                                                         Duration usual) {
  return std::make_shared<DelayedWork>(
      *this, usual,
      workers_ ? workers_->makeSerialQueue(label, QualityOfService::unspecified) : nullptr);
}

std::shared_ptr<Timer> VirtualRunLoop::scheduledTimer(Duration interval, bool repeats,
                                                      Block block) {
  return timers_.schedule(interval, repeats, std::move(block));
}

void VirtualRunLoop::scheduleDevice(TimePoint time, EventClass eventClass, Block block) {
  post(std::max(time, now_), eventClass, std::move(block));
}

void VirtualRunLoop::post(TimePoint time, EventClass eventClass, Block block) {
  events_.emplace(Key{time, eventClass, sequence_++}, std::move(block));
}

void VirtualRunLoop::runNext() {
  auto event = events_.extract(events_.begin());
  now_ = std::get<TimePoint>(event.key());
  event.mapped()();
}

VirtualRunLoop::Stop VirtualRunLoop::runUntil(const std::function<bool()>& done,
                                              TimePoint deadline) {
  for (std::uint64_t step = 0; step < kMostSteps; ++step) {
    if (done()) return Stop::condition;
    if (events_.empty()) return Stop::idle;
    if (std::get<TimePoint>(events_.begin()->first) > deadline) {
      now_ = std::max(now_, deadline);
      return Stop::deadline;
    }
    runNext();
  }
  return Stop::stepLimit;
}

VirtualRunLoop::Stop VirtualRunLoop::advance(Duration duration) {
  const TimePoint end = now_ + duration;
  const Stop stop = runUntil([] { return false; }, end);
  now_ = std::max(now_, end);
  return stop;
}

}  // namespace corvana::platform
