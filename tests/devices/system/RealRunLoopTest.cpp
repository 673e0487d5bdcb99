#include <atomic>
#include <csignal>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "devices/system/RealRunLoop.h"
#include "devices/system/TerminationSignals.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana::tests {
namespace {

using devices::RealRunLoop;
using platform::EventClass;
using platform::QualityOfService;
using platform::seconds;
using platform::VirtualRunLoop;

// Only orders and ends are asked for, never durations: a slow machine must not fail.
constexpr platform::TimePoint kFarAway = platform::TimePoint::max();

TEST(RealRunLoop, MainQueueRunsInOrderOnTheCallersThreadUntilItsDeadlineOrWoken) {
  RealRunLoop loop;
  std::vector<int> order;
  const auto here = std::this_thread::get_id();
  loop.mainQueue().asyncAfter(seconds(100'000), [] { FAIL(); });
  for (int i = 1; i <= 3; ++i) {
    loop.mainQueue().async([&, i] {
      EXPECT_EQ(std::this_thread::get_id(), here);
      order.push_back(i);
    });
  }
  loop.mainQueue().asyncAfter(seconds(0.01), [&] { order.push_back(4); });
  const auto hasAll = [&] { return order.size() == 4; };
  EXPECT_EQ(loop.runUntil(hasAll, kFarAway), RealRunLoop::Stop::condition);
  EXPECT_EQ(order, (std::vector{1, 2, 3, 4}));
  const auto soon = loop.now() + seconds(0.01);
  EXPECT_EQ(loop.runUntil([] { return false; }, soon), RealRunLoop::Stop::deadline);
  std::atomic<bool> done = false;
  std::thread other([&] {
    done = true;
    loop.wake();
  });
  EXPECT_EQ(loop.runUntil([&] { return done.load(); }, kFarAway), RealRunLoop::Stop::condition);
  other.join();
}

TEST(RealRunLoop, ASerialQueueKeepsPostingOrderOneAtATime) {
  RealRunLoop loop(4);
  const auto queue = loop.makeSerialQueue("test", platform::QualityOfService::userInitiated);
  std::vector<int> order;  // without a lock: the queue is one
  std::atomic<bool> done = false;
  for (int i = 0; i < 500; ++i)
    queue->async([&, i] { order.push_back(i); });
  queue->asyncAfter(seconds(0.001), [&] {
    queue->async([&] {
      done = true;
      loop.wake();
    });
  });
  loop.runUntil([&] { return done.load(); }, kFarAway);
  queue->async([&] { order.push_back(-1); });
  loop.shutDown();
  ASSERT_GE(order.size(), 500u);
  for (int i = 0; i < 500; ++i)
    EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

// Looking and listening wait for the film, not the other way round.
TEST(RealRunLoop, UtilityWorkYieldsTheProcessor) {
  using Qos = platform::QualityOfService;
  RealRunLoop loop;
  const int usual = getpriority(PRIO_PROCESS, 0);
  for (const Qos qos : {Qos::userInitiated, Qos::utility}) {
    std::atomic<int> niceness = -100;
    loop.makeSerialQueue("test", qos)->async([&] {
      niceness = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
      loop.wake();
    });
    loop.runUntil([&] { return niceness != -100; }, kFarAway);
    EXPECT_EQ(niceness > usual, qos == Qos::utility);
  }
}

TEST(TerminationSignalsDeathTest, TheFirstAsksTheSecondEndsTheProgram) {
  const auto twice = [] {
    devices::TerminationSignals signals([] {});
    raise(SIGINT);
    while (!signals.arrived())
      std::this_thread::yield();
    raise(SIGTERM);
  };
  EXPECT_EXIT(twice(), testing::KilledBySignal(SIGTERM), "");
}

TEST(RealRunLoop, DeviceBlocksRunByTimeFramesFirst) {
  RealRunLoop loop;
  std::vector<int> order;
  std::atomic<bool> done = false;
  std::promise<void> allPosted;
  loop.scheduleDevice(loop.now(), EventClass::frame, [&] { allPosted.get_future().wait(); });
  const auto device = loop.now() + seconds(0.02);
  loop.scheduleDevice(device + seconds(0.001), EventClass::task, [&] {
    order.push_back(3);
    done = true;
    loop.wake();
  });
  loop.scheduleDevice(device, EventClass::task, [&] { order.push_back(2); });
  loop.scheduleDevice(device, EventClass::frame, [&] { order.push_back(1); });
  allPosted.set_value();
  loop.runUntil([&] { return done.load(); }, kFarAway);
  loop.shutDown();
  EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(RealRunLoop, TimersRepeatUntilInvalidatedAndFireOnceOtherwise) {
  RealRunLoop loop;
  int ticks = 0;
  int once = 0;
  std::shared_ptr<platform::Timer> repeating = loop.scheduledTimer(seconds(0.002), true, [&] {
    if (++ticks == 3) repeating->invalidate();
  });
  std::shared_ptr<platform::Timer> single = loop.scheduledTimer(seconds(0.001), false, [&] {
    EXPECT_FALSE(single->isValid());
    ++once;
  });
  loop.scheduledTimer(seconds(0.001), false, [&] { FAIL(); })->invalidate();
  loop.runUntil([&] { return ticks == 3 && once == 1; }, kFarAway);
  loop.runUntil([] { return false; }, loop.now() + seconds(0.01));
  EXPECT_EQ(ticks, 3);
  EXPECT_EQ(once, 1);
}

TEST(RealRunLoop, ShutDownRunsNothingMoreAndDestroysWhatIsLeftOnTheMainThread) {
  std::vector<std::thread::id> destroyedOn;
  const auto probe = [&] {
    return std::shared_ptr<void>(nullptr,
                                 [&](auto) { destroyedOn.push_back(std::this_thread::get_id()); });
  };
  std::atomic<int> ran = 0;
  RealRunLoop loop;
  loop.mainQueue().async([&ran, probe = probe()] { ++ran; });
  loop.globalQueue(QualityOfService::utility).asyncAfter(seconds(1000), [&ran, probe = probe()] {
    ++ran;
  });
  loop.shutDown();
  loop.shutDown();
  loop.globalQueue(QualityOfService::utility).async([&] { ++ran; });
  EXPECT_EQ(loop.runUntil([] { return false; }, loop.now()), RealRunLoop::Stop::deadline);
  EXPECT_EQ(ran, 0);
  EXPECT_EQ(destroyedOn, std::vector(2, std::this_thread::get_id()));
}

TEST(RealRunLoop, ShutDownEmptiesAQueueWhoseBlocksOwnIt) {
  /// Always has one block waiting.
  struct Endless : std::enable_shared_from_this<Endless> {
    explicit Endless(RealRunLoop& loop)
        : queue(loop.makeSerialQueue("test", platform::QualityOfService::utility)) {}
    void goOn() {
      queue->async([self = shared_from_this()] { self->goOn(); });
    }
    std::shared_ptr<platform::DispatchQueue> queue;
  };
  RealRunLoop loop;
  auto endless = std::make_shared<Endless>(loop);
  endless->goOn();
  const std::weak_ptr<Endless> weak = std::exchange(endless, nullptr);
  loop.shutDown();
  EXPECT_TRUE(weak.expired());
}

TEST(RealRunLoop, AnOwnerLetGoOnAWorkerIsDestroyedOnMain) {
  RealRunLoop loop;
  std::thread::id destroyedOn;
  std::shared_ptr<int> owner(new int, [&](int* owned) {
    destroyedOn = std::this_thread::get_id();
    delete owned;
  });
  loop.globalQueue(QualityOfService::utility).async([&loop, owner = std::move(owner)]() mutable {
    platform::releaseOnMain(loop, std::move(owner));
  });
  loop.runUntil([&] { return destroyedOn != std::thread::id(); }, kFarAway);
  EXPECT_EQ(destroyedOn, std::this_thread::get_id());
}

/// What came of work, when, as the loop told it.
std::vector<std::pair<int, double>> outcomesOf(platform::DrivenLoop& loop) {
  std::vector<std::pair<int, double>> outcomes;
  const auto first = loop.makeWorkQueue("first", QualityOfService::utility, seconds(0.1));
  const auto second = loop.makeWorkQueue("second", QualityOfService::utility, seconds(0.25));
  const auto here = std::this_thread::get_id();
  for (int i = 0; i < 4; ++i) {
    loop.mainQueue().asyncAfter(seconds(0.05 * i), [&, i] {
      (i % 2 == 0 ? first : second)->async([&, i] {
        return [&, i] {
          EXPECT_EQ(std::this_thread::get_id(), here);
          outcomes.emplace_back(i, platform::inSeconds(loop.now().time_since_epoch()));
        };
      });
    });
  }
  first->async([] { return platform::Block(); });
  loop.runUntil([&] { return outcomes.size() == 4; }, kFarAway);
  return outcomes;
}

TEST(WorkQueues, TellOutcomesOnTheMainQueueAtFixedTimesInVirtualTimeWhoeverWorks) {
  VirtualRunLoop alone;
  VirtualRunLoop withWorkers(std::make_unique<RealRunLoop>());
  const std::vector<std::pair<int, double>> expected{{0, 0.1}, {2, 0.2}, {1, 0.3}, {3, 0.4}};
  EXPECT_EQ(outcomesOf(alone), expected);
  EXPECT_EQ(outcomesOf(withWorkers), expected);
  RealRunLoop real;
  EXPECT_EQ(outcomesOf(real).size(), 4U) << "in any order";
}

TEST(WorkQueues, MayStillBeGivenWorkWhenTheLoopHasEnded) {
  VirtualRunLoop loop(std::make_unique<RealRunLoop>());
  const auto queue = loop.makeWorkQueue("test", QualityOfService::utility, seconds(0.1));
  const auto mustNotBeTold = [] { return platform::Block([] { FAIL(); }); };
  queue->async(mustNotBeTold);
  loop.shutDown();
  queue->async(mustNotBeTold);
}

}  // namespace
}  // namespace corvana::tests
