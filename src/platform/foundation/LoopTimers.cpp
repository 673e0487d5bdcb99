#include "platform/foundation/LoopTimers.h"

#include <algorithm>
#include <utility>

namespace corvana::platform {

class LoopTimers::LoopTimer final : public Timer, public std::enable_shared_from_this<LoopTimer> {
 public:
  LoopTimer(LoopTimers& timers, Duration interval, bool repeats, Block block)
      : timers_(timers),
        interval_(std::max(interval, Duration(1))),
        repeats_(repeats),
        block_(std::move(block)) {}

  void schedule(TimePoint due) {
    timers_.post_(due, [self = shared_from_this(), due] { self->fire(due); });
  }
  void invalidate() override { block_ = nullptr; }
  bool isValid() const override { return static_cast<bool>(block_); }

 private:
  void fire(TimePoint due) {
    if (!block_) return;
    const Block block = repeats_ ? block_ : std::exchange(block_, nullptr);
    block();
    if (!isValid()) return;
    const auto missed = std::max<Duration::rep>((timers_.now_() - due) / interval_, 0);
    schedule(due + interval_ * (missed + 1));
  }

  LoopTimers& timers_;
  Duration interval_;
  bool repeats_;
  Block block_;
};

LoopTimers::LoopTimers(std::function<TimePoint()> now, std::function<void(TimePoint, Block)> post)
    : now_(std::move(now)), post_(std::move(post)) {}

std::shared_ptr<Timer> LoopTimers::schedule(Duration interval, bool repeats, Block block) {
  auto timer = std::make_shared<LoopTimer>(*this, interval, repeats, std::move(block));
  timer->schedule(now_() + std::max(interval, Duration::zero()));
  std::erase_if(timers_, [](const auto& other) { return other.expired(); });
  timers_.push_back(timer);
  return timer;
}

void LoopTimers::invalidateAll() {
  for (const auto& timer : std::exchange(timers_, {})) {
    if (const auto alive = timer.lock()) alive->invalidate();
  }
}

}  // namespace corvana::platform
