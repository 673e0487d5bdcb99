#include "app/Driver.h"

#include "devices/system/RealRunLoop.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace app {
namespace {

class VirtualDriver final : public Driver {
 public:
  platform::RunLoop& loop() override { return loop_; }
  Stop run(const std::function<bool()>& done, platform::Duration duration) override {
    using LoopStop = platform::VirtualRunLoop::Stop;
    switch (loop_.runUntil(done, loop_.now() + duration)) {
      case LoopStop::condition:
        return Stop::condition;
      case LoopStop::deadline:
        return Stop::deadline;
      case LoopStop::idle:
        return Stop::idle;
      case LoopStop::stepLimit:
        break;
    }
    return Stop::stepLimit;
  }
  /// It asks after each event anyway.
  void wake() override {}
  void shutDown() override { loop_.discardPending(); }

 private:
  platform::VirtualRunLoop loop_;
};

class RealDriver final : public Driver {
 public:
  platform::RunLoop& loop() override { return loop_; }
  Stop run(const std::function<bool()>& done, platform::Duration duration) override {
    const auto stop = loop_.runUntil(done, loop_.now() + duration);
    return stop == devices::RealRunLoop::Stop::condition ? Stop::condition : Stop::deadline;
  }
  void wake() override { loop_.wake(); }
  void shutDown() override { loop_.shutDown(); }

 private:
  devices::RealRunLoop loop_;
};

}  // namespace

std::unique_ptr<Driver> makeDriver(TimeKind kind) {
  if (kind == TimeKind::real) return std::make_unique<RealDriver>();
  return std::make_unique<VirtualDriver>();
}

}  // namespace app
