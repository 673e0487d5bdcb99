#include "devices/system/TerminationSignals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "platform/foundation/Require.h"

namespace corvana::devices {
namespace {

constexpr std::array kSignals{SIGINT, SIGTERM};
constexpr char kArrived = 'a';
constexpr char kOver = 'o';

/// A handler knows nothing but what is static, and may do little more than write.
std::atomic<int> writeEnd = -1;

void tell(char what) {
  while (write(writeEnd, &what, 1) < 0 && errno == EINTR) {
  }
}

void handle(int);

void restoreDefaults() {
  for (const int signal : kSignals) {
    struct sigaction current {};
    sigaction(signal, nullptr, &current);
    if (current.sa_handler == handle) std::signal(signal, SIG_DFL);
  }
}

void handle(int) {
  const int error = errno;
  restoreDefaults();
  tell(kArrived);
  errno = error;
}

void installHandlers() {
  for (const int signal : kSignals) {
    struct sigaction current {};
    sigaction(signal, nullptr, &current);
    if (current.sa_handler == SIG_IGN) continue;
    struct sigaction wanted {};
    wanted.sa_handler = handle;
    wanted.sa_flags = SA_RESTART;
    sigaction(signal, &wanted, nullptr);
  }
}

}  // namespace

TerminationSignals::TerminationSignals(std::function<void()> onArrival)
    : onArrival_(std::move(onArrival)) {
  std::array<int, 2> ends{};
  platform::require(writeEnd < 0, "signals are watched by one at a time");
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return;  // Signals then end the program at once.
  readEnd_ = ends[0];
  writeEnd = ends[1];
  watcher_ = std::thread([this] { watch(readEnd_); });
  installHandlers();
}

TerminationSignals::~TerminationSignals() {
  if (readEnd_ < 0) return;
  restoreDefaults();
  tell(kOver);
  watcher_.join();
  close(writeEnd.exchange(-1));
  close(readEnd_);
}

void TerminationSignals::watch(int pipe) {
  char what = kOver;
  while (read(pipe, &what, 1) == 1 && what == kArrived) {
    if (!arrived_.exchange(true)) onArrival_();
  }
}

}  // namespace corvana::devices
