#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "app/run/FlowScreen.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::app {

/// What the program that started this one follows of a run: each event as it comes, and pictures
/// of the screen. They go through a Unix socket of whole messages (SOCK_SEQPACKET) that the caller
/// opened. A message is a line of events.jsonl, or `{"event": "picture", …}` and with it the
/// descriptor of a memory file that holds the pixels (RGBA, rows without gaps). An event waits
/// for room, a picture that finds none is left out. Main queue; outlives the loop's work.
class CallerLink {
 public:
  struct Setup {
    int socket = -1;
    double picturesPerSecond = 0;  ///< 0: none
  };

  /// `onGone` is told once when nobody listens any more.
  CallerLink(platform::RunLoop& loop, FlowScreen& screen, const Setup& setup,
             std::function<void()> onGone);
  ~CallerLink();
  CallerLink(const CallerLink&) = delete;
  CallerLink& operator=(const CallerLink&) = delete;

  void tell(const std::string& event);

  /// Whether the descriptor is such a socket.
  static bool isPossible(int socket);

 private:
  void showScreen();
  void send(const std::string& message, int attached, bool mayWait);

  platform::RunLoop& loop_;
  FlowScreen& screen_;
  const int socket_;
  std::function<void()> onGone_;
  platform::TimePoint start_;
  std::shared_ptr<platform::Timer> timer_;
};

}  // namespace corvana::app
