#include <QCoreApplication>
#include <QTimer>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "ScreenWorld.h"
#include "devices/qtquick/QtRunLoop.h"

namespace corvana::tests {
namespace {

using devices::QtRunLoop;
using platform::seconds;

// Only orders and ends are asked for, never durations.
constexpr platform::TimePoint kFarAway = platform::TimePoint::max();

class EventLoop : public tests::ScreenWorld {};

TEST_F(EventLoop, RunsTheMainQueueInOrderWithTimersAndWorkers) {
  QtRunLoop loop;
  std::vector<int> order;
  const auto here = std::this_thread::get_id();
  loop.mainQueue().asyncAfter(seconds(100'000), [] { FAIL(); });
  for (int i = 1; i <= 2; ++i) {
    loop.mainQueue().async([&, i] {
      EXPECT_EQ(std::this_thread::get_id(), here);
      order.push_back(i);
    });
  }
  loop.mainQueue().asyncAfter(seconds(0.02), [&] { order.push_back(3); });
  int ticks = 0;
  std::shared_ptr<platform::Timer> timer = loop.scheduledTimer(seconds(0.001), true, [&] {
    if (++ticks == 3) timer->invalidate();
  });
  std::atomic<bool> worked = false;
  loop.globalQueue(platform::QualityOfService::utility).async([&] {
    loop.mainQueue().async([&] { worked = true; });
  });
  const auto done = [&] { return order.size() == 3 && ticks == 3 && worked; };
  EXPECT_EQ(loop.runUntil(done, kFarAway), QtRunLoop::Stop::condition);
  EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST_F(EventLoop, StopsAtItsDeadlineAndGoesOnAfterwards) {
  QtRunLoop loop;
  bool late = false;
  loop.mainQueue().asyncAfter(seconds(0.03), [&] { late = true; });
  EXPECT_EQ(loop.runUntil([] { return false; }, loop.now() + seconds(0.005)),
            QtRunLoop::Stop::deadline);
  EXPECT_EQ(loop.runUntil([&] { return late; }, kFarAway), QtRunLoop::Stop::condition);
}

// A queue that never runs dry must not starve the window.
TEST_F(EventLoop, InputGetsItsTurnBetweenBlocks) {
  QtRunLoop loop;
  std::function<void()> feedItself = [&] { loop.mainQueue().async(feedItself); };
  loop.mainQueue().async(feedItself);
  bool input = false;
  QTimer::singleShot(0, [&] { input = true; });
  EXPECT_EQ(loop.runUntil([&] { return input; }, kFarAway), QtRunLoop::Stop::condition);
}

TEST_F(EventLoop, NothingRunsOnceItIsShutDown) {
  auto owned = std::make_shared<int>(1);
  const std::weak_ptr<int> watch = owned;
  QtRunLoop loop;
  bool ran = false;
  loop.mainQueue().async([&ran, owned = std::move(owned)] { ran = true; });
  loop.shutDown();
  QCoreApplication::processEvents();
  EXPECT_FALSE(ran);
  EXPECT_TRUE(watch.expired());
}

}  // namespace
}  // namespace corvana::tests
