#include "devices/qtquick/QtRunLoop.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <utility>

namespace corvana::devices {

using platform::Duration;
using platform::TimePoint;

namespace {

/// Input and painting get their turn after so much work.
constexpr Duration kLongestTurn = std::chrono::milliseconds(8);

const QEvent::Type kTurn = static_cast<QEvent::Type>(QEvent::registerEventType());

}  // namespace

/// Brings the plain loop's main queue into the event loop, a turn at a time.
class QtRunLoop::Pump final : public QObject {
 public:
  explicit Pump(RealRunLoop& plain) : plain_(plain) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, [this] { takeTurn(); });
  }

  /// Any thread.
  void ask() {
    if (!asked_.exchange(true)) QCoreApplication::postEvent(this, new QEvent(kTurn));
  }

  Stop run(const std::function<bool()>& done, TimePoint deadline) {
    QEventLoop loop;
    done_ = &done;
    deadline_ = deadline;
    loop_ = &loop;
    ask();
    loop.exec();
    timer_.stop();
    loop_ = nullptr;
    done_ = nullptr;
    return stop_;
  }

 protected:
  bool event(QEvent* event) override {
    if (event->type() != kTurn) return QObject::event(event);
    asked_ = false;
    takeTurn();
    return true;
  }

 private:
  void takeTurn() {
    if (!loop_) return;
    const TimePoint end = plain_.now() + kLongestTurn;
    bool any = true;
    while (any && !(*done_)() && plain_.now() < end)
      any = plain_.runOneDue();
    if ((*done_)()) return quit(Stop::condition);
    if (plain_.now() >= deadline_) return quit(Stop::deadline);
    waitForNext();
  }
  void waitForNext() {
    const TimePoint next = std::min(plain_.nextDue().value_or(deadline_), deadline_);
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(next - plain_.now());
    constexpr std::chrono::milliseconds kLongestWait = std::chrono::hours(1);
    timer_.start(std::clamp(wait, std::chrono::milliseconds::zero(), kLongestWait));
  }
  void quit(Stop stop) {
    stop_ = stop;
    loop_->quit();
    loop_ = nullptr;
  }

  RealRunLoop& plain_;
  QTimer timer_;
  std::atomic<bool> asked_ = false;
  const std::function<bool()>* done_ = nullptr;
  TimePoint deadline_{};
  QEventLoop* loop_ = nullptr;
  Stop stop_ = Stop::condition;
};

QtRunLoop::QtRunLoop(int workers) : plain_(workers), pump_(std::make_unique<Pump>(plain_)) {
  plain_.setOnMainPost([this] { pump_->ask(); });
}

QtRunLoop::~QtRunLoop() {
  shutDown();
}

QtRunLoop::Stop QtRunLoop::runUntil(const std::function<bool()>& done, TimePoint deadline) {
  return pump_->run(done, deadline);
}

void QtRunLoop::wake() {
  pump_->ask();
}

void QtRunLoop::shutDown() {
  plain_.shutDown();
}

}  // namespace corvana::devices
