// How long input waits and how often the window is drawn while a whole capture runs in it.
//
//     screen-latency --reference card --text-file session/text.txt --camera session/session.mp4
//     --output run
//
// An event is posted to the window's thread every 20 ms, as the system would post a touch, and the
// time until it is taken is measured; so is the time from one drawn frame to the next. Takes the
// arguments of `videoid capture` and prints one line of figures. Needs a display or
// QT_QPA_PLATFORM=offscreen.

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QQuickWindow>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

#include <CLI/CLI.hpp>
#include <time.h>

#include "app/CaptureCommand.h"

namespace {

using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

double percentile(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  std::ranges::sort(values);
  const auto last = static_cast<double>(values.size() - 1);
  return values[static_cast<std::size_t>(share * last + 0.5)];
}

double processorSeconds(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

struct Touch final : QEvent {
  Touch() : QEvent(User) {}
  Clock::time_point posted = Clock::now();
};

const Clock::time_point start = Clock::now();

/// Lives on the window's thread from the application object's first moment to its last.
class Probe final : public QObject {
 public:
  Probe() {
    thread_ = std::thread([this] {
      while (!over_) {
        QCoreApplication::postEvent(this, new Touch);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
      }
    });
  }

  void finish() {
    over_ = true;
    thread_.join();
    const double frames = static_cast<double>(std::max<std::size_t>(frames_.size(), 1));
    std::printf(
        "input latency ms: median %.1f p95 %.1f worst %.1f; frame ms: median %.1f p95 %.1f of %zu; "
        "first frame after %.0f ms; processor ms a frame: window's thread %.1f, program %.1f\n",
        percentile(latencies_, 0.5), percentile(latencies_, 0.95), percentile(latencies_, 1),
        percentile(frames_, 0.5), percentile(frames_, 0.95), frames_.size(), firstFrame_,
        1e3 * windowSeconds_ / frames, 1e3 * processorSeconds(CLOCK_PROCESS_CPUTIME_ID) / frames);
  }

 protected:
  bool event(QEvent* event) override {
    if (event->type() != QEvent::User) return QObject::event(event);
    if (!window_) watchWindow();
    // Before the first frame there is nothing to touch.
    if (last_ != Clock::time_point()) {
      latencies_.push_back(milliseconds(Clock::now() - static_cast<Touch*>(event)->posted));
      windowSeconds_ = processorSeconds(CLOCK_THREAD_CPUTIME_ID) - before_;
    }
    return true;
  }

 private:
  void watchWindow() {
    const auto windows = QGuiApplication::allWindows();
    if (windows.isEmpty()) return;
    window_ = qobject_cast<QQuickWindow*>(windows.first());
    connect(window_, &QQuickWindow::frameSwapped, this, [this] {
      const auto now = Clock::now();
      if (last_ == Clock::time_point()) {
        firstFrame_ = milliseconds(now - start);
        before_ = processorSeconds(CLOCK_THREAD_CPUTIME_ID);
      } else {
        frames_.push_back(milliseconds(now - last_));
      }
      last_ = now;
    });
  }

  std::thread thread_;
  std::atomic<bool> over_ = false;
  QQuickWindow* window_ = nullptr;
  std::vector<double> latencies_;
  std::vector<double> frames_;
  Clock::time_point last_;
  double firstFrame_ = 0;
  double before_ = 0;
  double windowSeconds_ = 0;
};

Probe* probe = nullptr;

void startProbe() {
  probe = new Probe;
  qAddPostRoutine([] { probe->finish(); });
}
Q_COREAPP_STARTUP_FUNCTION(startProbe)

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  arguments.insert(arguments.begin(), "capture");
  arguments.insert(arguments.end(), {"--screen", "window"});
  std::ranges::reverse(arguments);
  CLI::App program;
  auto exitCode = app::ExitCode::result;
  app::addCaptureCommand(program, exitCode);
  try {
    program.parse(arguments);
  } catch (const CLI::ParseError& error) {
    return program.exit(error);
  }
  return static_cast<int>(exitCode);
}
