// How long input waits, how often the window is drawn, and what it costs while a whole capture runs
// in it; where the time goes from the program's start to the camera's first picture; and what a
// face match costs by itself, which holds the main queue.
//
//     screen-latency --reference card --text-file session/text.txt --camera session/session.mp4
//     --output run
//
// An event is posted to the window's thread every 20 ms, as the system would post a touch, and the
// time until it is taken is measured; so is the time from one drawn frame to the next. Takes the
// arguments of `videoid capture` and prints a few lines of figures, and the machine's load beside
// them. Needs a display or QT_QPA_PLATFORM=offscreen.

#include <QCoreApplication>
#include <QEvent>
#include <QQuickWindow>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <unistd.h>

#include "ProgramClock.h"
#include "app/card/DocumentFolders.h"
#include "app/commands/CaptureCommand.h"
#include "app/run/Resources.h"
#include "capture/FaceMatchDetector.h"
#include "devices/qtquick/PreviewItem.h"
#include "devices/screen/DirectoryBundle.h"
#include "devices/scripted/PatternFaces.h"
#include "devices/system/TerminalSystem.h"
#include "engine/recorder/VisionFrameAnalyzer.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana {
namespace {

using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

double percentile(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  std::ranges::sort(values);
  const auto last = static_cast<double>(values.size() - 1);
  return values[static_cast<std::size_t>(std::lround(share * last))];
}

struct Touch final : QEvent {
  Touch() : QEvent(User) {}
  Clock::time_point posted = Clock::now();
};

/// Processor time by what threads do, told by their names. Threads come and go and take up other
/// work, so it is asked for again and again.
class ThreadTimes {
 public:
  void look() {
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
      std::ifstream file(entry.path() / "stat");
      const std::string text((std::istreambuf_iterator<char>(file)), {});
      const auto nameEnd = text.rfind(')');
      if (nameEnd == std::string::npos) continue;  // It has just ended.
      const int id = std::stoi(entry.path().filename());
      std::istringstream fields(text.substr(nameEnd + 2));
      std::string skipped;
      double user = 0;
      double system = 0;
      for (int i = 0; i < 11; ++i)
        fields >> skipped;
      fields >> user >> system;
      const auto nameStart = text.find('(') + 1;
      const double time = (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
      const double before = std::exchange(times_[id], time);
      // A thread that has taken over the number of another begins at nothing.
      seconds_[groupOf(id, text.substr(nameStart, nameEnd - nameStart))] +=
          time < before ? time : time - before;
    }
  }
  const std::map<std::string, double>& seconds() const { return seconds_; }

 private:
  static std::string groupOf(int id, const std::string& name) {
    if (id == getpid()) return "main queue and window";
    if (name.ends_with(":src")) return "film's encoders";
    if (name.starts_with("demuxer")) return "camera's file";
    return "workers (analysis, preview, speech)";
  }

  std::map<int, double> times_;
  std::map<std::string, double> seconds_;
};

double mainReached = 0;

/// Lives on the window's thread from the application object's first moment to its last.
class Probe final : public QObject {
 public:
  Probe() {
    thread_ = std::thread([this] {
      for (int i = 0; !over_; ++i) {
        QCoreApplication::postEvent(this, new Touch);
        if (i % 25 == 0) threads_.look();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
      }
    });
    QCoreApplication::instance()->installEventFilter(this);
  }

  void finish() {
    over_ = true;
    thread_.join();
    double load = 0;
    getloadavg(&load, 1);
    std::printf("load %.1f\n", load);
    std::printf(
        "from the program's start, ms: main %.0f, inputs checked and toolkit up %.0f, window %.0f, "
        "first frame %.0f, first picture of the camera %.0f\n",
        mainReached, toolkitUp_, windowShown_, firstFrame_, firstPicture_);
    std::printf("input latency ms: median %.1f p95 %.1f worst %.1f\n", percentile(latencies_, 0.5),
                percentile(latencies_, 0.95), percentile(latencies_, 1));
    std::printf("frame ms: median %.1f p95 %.1f of %zu\n", percentile(frames_, 0.5),
                percentile(frames_, 0.95), frames_.size());
    const double frames = static_cast<double>(std::max<std::size_t>(frames_.size(), 1));
    std::printf("processor ms a frame:");
    for (const auto& [group, seconds] : threads_.seconds())
      std::printf(" %s %.1f;", group.c_str(), 1e3 * seconds / frames);
    std::printf(" program %.1f\n", 1e3 * secondsOn(CLOCK_PROCESS_CPUTIME_ID) / frames);
  }

 protected:
  bool event(QEvent* event) override {
    if (event->type() != QEvent::User) return QObject::event(event);
    // Before the first frame there is nothing to touch.
    if (last_ != Clock::time_point()) {
      latencies_.push_back(milliseconds(Clock::now() - static_cast<Touch*>(event)->posted));
    }
    return true;
  }
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() == QEvent::Show && windowShown_ == 0) {
      if (auto* window = qobject_cast<QQuickWindow*>(object)) watch(*window);
    }
    return false;
  }

 private:
  void watch(QQuickWindow& window) {
    windowShown_ = sinceStart();
    connect(&window, &QQuickWindow::frameSwapped, this, [this, &window] {
      const auto now = Clock::now();
      if (last_ == Clock::time_point()) firstFrame_ = sinceStart();
      if (last_ != Clock::time_point()) frames_.push_back(milliseconds(now - last_));
      if (firstPicture_ == 0 && showsCamera(*window.contentItem())) firstPicture_ = sinceStart();
      last_ = now;
    });
  }
  static bool showsCamera(const QQuickItem& below) {
    for (const QQuickItem* item : below.childItems()) {
      const auto* preview = qobject_cast<const devices::PreviewItem*>(item);
      if ((preview && preview->showsPicture()) || showsCamera(*item)) return true;
    }
    return false;
  }

  std::thread thread_;
  std::atomic<bool> over_ = false;
  ThreadTimes threads_;  ///< the thread's own until it is joined
  std::vector<double> latencies_;
  std::vector<double> frames_;
  Clock::time_point last_;
  double toolkitUp_ = sinceStart();
  double windowShown_ = 0;
  double firstFrame_ = 0;
  double firstPicture_ = 0;
};

Probe* probe = nullptr;

void startProbe() {
  probe = new Probe;
  qAddPostRoutine([] { probe->finish(); });
}
Q_COREAPP_STARTUP_FUNCTION(startProbe)

/// What the main queue is held for when two faces are compared.
void measureFaceMatch() {
  const auto resources = app::findResources();
  const devices::DirectoryBundle bundle(resources.module, nullptr);
  devices::StreamConsole console(std::cerr);
  capture::FaceMatchDetector detector(bundle, console);
  std::vector<double> times;
  for (int i = 0; i < 40; ++i) {
    const auto before = Clock::now();
    detector.faceMatch(devices::patternFace(0), devices::patternFace(1), 1);
    times.push_back(milliseconds(Clock::now() - before));
  }
  std::printf("face match ms, main queue held: median %.1f p95 %.1f\n", percentile(times, 0.5),
              percentile(times, 0.95));
}

/// What the first frames are not made to wait for.
void measureLoading() {
  const auto resources = app::findResources();
  const auto before = Clock::now();
  const auto tables = app::loadDocuments(resources, {});
  if (!tables) return;
  platform::VirtualRunLoop loop;
  const auto loaded = engine::VisionFrameAnalyzer::load(
      {.faceDetector = resources.faceDetector(),
       .faceLandmarks = resources.faceLandmarks(),
       .faceEmbedding = resources.faceModel(),
       .text = resources.textReader(),
       .documents = *tables,
       .readQueue = engine::VisionFrameAnalyzer::makeReadQueue(loop)});
  std::printf("what reads faces and cards is loaded in %.0f ms, on a worker\n",
              loaded ? milliseconds(Clock::now() - before) : 0);
}

int measure(int argc, char** argv) {
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
  measureFaceMatch();
  measureLoading();
  return static_cast<int>(exitCode);
}

}  // namespace
}  // namespace corvana

int main(int argc, char** argv) {
  corvana::mainReached = corvana::sinceStart();
  try {
    return corvana::measure(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "screen-latency: %s\n", error.what());
    return 1;
  }
}
