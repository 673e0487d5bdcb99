#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "corvana/videoid.h"

namespace corvana::client {

/// What a process left behind.
struct ChildEnd {
  bool started = false;
  int startFault = 0;       ///< `errno` of what kept it from starting or from being watched
  bool isWatchable = true;  ///< false: nobody could have told that it ended, so that it was ended
  int exitCode = -1;        ///< negative: a signal ended it, or nobody knows what did
  int signal = 0;
  bool wasTerminated = false;  ///< by `terminate`, whatever came of it
  std::string output;
  std::string errors;  ///< the last of what it complained of
};

/// What a process says while it runs.
struct ChildEvents {
  std::function<void(const std::string& json)> onEvent;
  std::function<void(const corvana_videoid_picture&)> onPicture;
};

/// A process of the program, and what can be done to it from other threads.
class Child {
 public:
  /// Runs it to its end. `events` are called from here; `--caller` is added where there are any.
  ChildEnd run(const std::string& program, std::vector<std::string> arguments,
               const ChildEvents& events);

  /// Any thread; nothing happens when none runs.
  void terminate();

 private:
  std::mutex mutex_;
  int process_ = -1;  ///< its pidfd, which no later process can be mistaken for
  bool terminateSoon_ = false;
  bool wasTerminated_ = false;

  friend class RunningChild;
};

}  // namespace corvana::client
