#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace corvana::devices {

/// While it lives, the first SIGINT or SIGTERM asks the program to end in good order, and the
/// second one ends it at once. A signal that the program was started to ignore stays ignored. One
/// at a time in a process; main thread.
class TerminationSignals {
 public:
  /// `onArrival` comes once at most, on a thread of its own, after `arrived` has become true.
  explicit TerminationSignals(std::function<void()> onArrival);
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

  /// Whether a signal has come. Any thread.
  bool arrived() const { return arrived_; }

 private:
  void watch(int pipe);

  std::function<void()> onArrival_;
  std::atomic<bool> arrived_ = false;
  int readEnd_ = -1;
  std::thread watcher_;
};

}  // namespace corvana::devices
