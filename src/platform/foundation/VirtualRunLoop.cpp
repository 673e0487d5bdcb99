#include "platform/foundation/VirtualRunLoop.h"

#include <algorithm>
#include <utility>

namespace platform {

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

class VirtualRunLoop::VirtualTimer final : public Timer,
                                           public std::enable_shared_from_this<VirtualTimer> {
 public:
  VirtualTimer(VirtualRunLoop& loop, Duration interval, bool repeats, Block block)
      : loop_(loop),
        interval_(std::max(interval, Duration(1))),
        repeats_(repeats),
        block_(std::move(block)) {}

  void schedule(TimePoint due) {
    loop_.post(due, EventClass::task, [self = shared_from_this(), due] { self->fire(due); });
  }
  void invalidate() override { block_ = nullptr; }
  bool isValid() const override { return static_cast<bool>(block_); }

 private:
  void fire(TimePoint due) {
    if (!block_) return;
    const Block block = repeats_ ? block_ : std::exchange(block_, nullptr);
    block();
    if (isValid()) schedule(due + interval_);
  }

  VirtualRunLoop& loop_;
  Duration interval_;
  bool repeats_;
  Block block_;
};

VirtualRunLoop::VirtualRunLoop() : queue_(std::make_shared<Queue>(*this)) {}

VirtualRunLoop::~VirtualRunLoop() {
  discardPending();
}

void VirtualRunLoop::discardPending() {
  // A timer's block may own the one who owns the timer.
  for (const auto& timer : std::exchange(timers_, {})) {
    if (const auto alive = timer.lock()) alive->invalidate();
  }
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

std::shared_ptr<Timer> VirtualRunLoop::scheduledTimer(Duration interval, bool repeats,
                                                      Block block) {
  auto timer = std::make_shared<VirtualTimer>(*this, interval, repeats, std::move(block));
  timer->schedule(now_ + std::max(interval, Duration::zero()));
  std::erase_if(timers_, [](const auto& other) { return other.expired(); });
  timers_.push_back(timer);
  return timer;
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

VirtualRunLoop::Stop VirtualRunLoop::runUntil(const std::function<bool()>& done, TimePoint deadline,
                                              std::uint64_t stepLimit) {
  for (std::uint64_t step = 0; step < stepLimit; ++step) {
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

}  // namespace platform
