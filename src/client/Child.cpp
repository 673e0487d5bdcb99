#include "client/Child.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "client/Descriptor.h"

// Debian 12's header does not say that it is C.
extern "C" {
#include <sys/pidfd.h>
}

extern "C" char** environ;  // NOLINT(readability-redundant-declaration): POSIX declares it nowhere

namespace corvana::client {
namespace {

constexpr int kCallerSocket = 3;
constexpr std::size_t kMostOutput = std::size_t{16} << 20;
constexpr std::size_t kMostErrors = std::size_t{64} << 10;
constexpr std::size_t kMostEvent = std::size_t{256} << 10;
constexpr std::size_t kBytesPerPixel = 4;
constexpr int kLargestSide = 16384;

struct Pair {
  Descriptor ours;
  Descriptor theirs;
};

bool makePipe(Pair& pair) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return false;
  pair = {Descriptor(ends[0]), Descriptor(ends[1])};
  return true;
}

bool makeSocket(Pair& pair) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) return false;
  pair = {Descriptor(ends[0]), Descriptor(ends[1])};
  return true;
}

/// Standard input, output, errors and the socket; nothing else of the caller's is handed on.
class SpawnActions {
 public:
  SpawnActions(int output, int errors, int socket) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions_, errors, STDERR_FILENO);
    if (socket >= 0) posix_spawn_file_actions_adddup2(&actions_, socket, kCallerSocket);
    posix_spawn_file_actions_addclosefrom_np(&actions_,
                                             socket >= 0 ? kCallerSocket + 1 : kCallerSocket);
  }
  ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

/// A thread that blocks signals would have a process that cannot be told to end. In a group of its
/// own a terminal's Ctrl-C reaches the caller alone, who says by a cancellation what is to become
/// of the run.
class SpawnAttributes {
 public:
  SpawnAttributes() {
    posix_spawnattr_init(&attributes_);
    posix_spawnattr_setpgroup(&attributes_, 0);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes_, &none);
    sigset_t usual;
    sigemptyset(&usual);
    for (const int signal : {SIGTERM, SIGINT, SIGPIPE, SIGCHLD})
      sigaddset(&usual, signal);
    posix_spawnattr_setsigdefault(&attributes_, &usual);
    posix_spawnattr_setflags(
        &attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
  }
  ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;
  const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_;
};

/// Descriptors 0 to 3 are put in place one after another: none of ours may lie there before.
void liftAboveStandard(Descriptor& descriptor) {
  if (!descriptor.isOpen() || descriptor.get() > kCallerSocket) return;
  descriptor = Descriptor(fcntl(descriptor.get(), F_DUPFD_CLOEXEC, kCallerSocket + 1));
}

/// Keeps the last `most` bytes; false at the end.
bool readSome(int file, std::string& text, std::size_t most) {
  std::array<char, 65536> bytes;
  const ssize_t count = read(file, bytes.data(), bytes.size());
  if (count < 0) return errno == EINTR || errno == EAGAIN;
  text.append(bytes.data(), static_cast<std::size_t>(count));
  if (text.size() > most) text.erase(0, text.size() - most);
  return count > 0;
}

/// The file of a picture, mapped for as long as it is shown.
class Pixels {
 public:
  Pixels(const Descriptor& file, std::size_t size) : size_(size) {
    struct stat state = {};
    const bool isWhole = fstat(file.get(), &state) == 0 && state.st_size >= 0 &&
                         static_cast<std::size_t>(state.st_size) >= size;
    if (isWhole) mapped_ = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.get(), 0);
  }
  ~Pixels() {
    if (mapped_ != MAP_FAILED) munmap(mapped_, size_);
  }
  Pixels(const Pixels&) = delete;
  Pixels& operator=(const Pixels&) = delete;
  const unsigned char* get() const {
    return mapped_ == MAP_FAILED ? nullptr : static_cast<const unsigned char*>(mapped_);
  }

 private:
  std::size_t size_;
  void* mapped_ = MAP_FAILED;
};

void showPicture(const std::string& header, const Descriptor& file, const ChildEvents& events) {
  const auto what = nlohmann::json::parse(header, nullptr, false);
  if (!what.is_object() || !events.onPicture) return;
  const auto number = [&what](const char* key) {
    const auto found = what.find(key);
    return found != what.end() && found->is_number() ? found->get<double>() : 0;
  };
  const double width = number("width");
  const double height = number("height");
  if (!(width >= 1 && height >= 1 && width <= kLargestSide && height <= kLargestSide)) return;
  corvana_videoid_picture picture = {sizeof picture, number("t"), static_cast<int>(width),
                                     static_cast<int>(height), nullptr};
  const Pixels pixels(file, kBytesPerPixel * static_cast<std::size_t>(picture.width) *
                                static_cast<std::size_t>(picture.height));
  picture.pixels = pixels.get();
  if (picture.pixels) events.onPicture(picture);
}

Descriptor attachedTo(msghdr& header) {
  for (cmsghdr* part = CMSG_FIRSTHDR(&header); part; part = CMSG_NXTHDR(&header, part)) {
    if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) continue;
    int file = -1;
    std::memcpy(&file, CMSG_DATA(part), sizeof file);
    return Descriptor(file);
  }
  return Descriptor();
}

/// One message; false at the end.
bool receiveOne(int socket, std::string& buffer, const ChildEvents& events) {
  buffer.resize(kMostEvent);
  iovec bytes = {buffer.data(), buffer.size()};
  alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))];
  msghdr header = {};
  header.msg_iov = &bytes;
  header.msg_iovlen = 1;
  header.msg_control = control;
  header.msg_controllen = sizeof control;
  const ssize_t count = recvmsg(socket, &header, MSG_CMSG_CLOEXEC | MSG_DONTWAIT);
  if (count < 0) return errno == EINTR || errno == EAGAIN;
  if (count == 0) return false;
  buffer.resize(static_cast<std::size_t>(count));
  const Descriptor file = attachedTo(header);
  if (file.isOpen()) {
    showPicture(buffer, file, events);
  } else if (events.onEvent) {
    if (buffer.back() == '\n') buffer.pop_back();
    events.onEvent(buffer);
  }
  return true;
}

struct Streams {
  Pair output;
  Pair errors;
  Pair socket;  ///< closed when nobody follows

  bool open(bool followed) {
    if (!makePipe(output) || !makePipe(errors) || (followed && !makeSocket(socket))) return false;
    for (Pair* pair : {&output, &errors, &socket})
      liftAboveStandard(pair->theirs);
    return true;
  }

  void closeTheirs() {
    for (Pair* pair : {&output, &errors, &socket})
      pair->theirs.reset();
  }

  /// Takes what comes until the process has ended and nothing is left; a negative one has.
  void follow(int process, ChildEnd& end, const ChildEvents& events) {
    std::string buffer;
    for (bool hasEnded = process < 0;;) {
      std::array<pollfd, 4> watched = {{{output.ours.get(), POLLIN, 0},
                                        {errors.ours.get(), POLLIN, 0},
                                        {socket.ours.get(), POLLIN, 0},
                                        {hasEnded ? -1 : process, POLLIN, 0}}};
      // What it started may hold the pipes open when it has gone: then only what is there counts.
      const int ready = poll(watched.data(), watched.size(), hasEnded ? 0 : -1);
      if (ready < 0 && errno == EINTR) continue;
      if (ready <= 0) return;
      if (watched[0].revents && !readSome(output.ours.get(), end.output, kMostOutput))
        output.ours.reset();
      if (watched[1].revents && !readSome(errors.ours.get(), end.errors, kMostErrors))
        errors.ours.reset();
      if (watched[2].revents && !receiveOne(socket.ours.get(), buffer, events)) socket.ours.reset();
      if (watched[3].revents) hasEnded = true;
    }
  }
};

/// How it ended; nobody knows when the caller's process waited for it or ignores its children.
void readExit(pid_t child, ChildEnd& end) {
  int status = 0;
  pid_t waited = -1;
  do {
    waited = waitpid(child, &status, 0);
  } while (waited < 0 && errno == EINTR);
  if (waited != child) return;
  if (WIFEXITED(status)) end.exitCode = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) end.signal = WTERMSIG(status);
}

/// Without a descriptor of the process nobody would learn that it has ended.
void giveUp(pid_t child, int fault, ChildEnd& end) {
  kill(child, SIGKILL);
  readExit(child, end);
  end.started = false;
  end.startFault = fault;
  end.isWatchable = false;
  end.errors = std::string("The program's process can't be watched (pidfd_open: ") +
               std::strerror(fault) + ")";
}

}  // namespace

/// Lets other threads reach the process for as long as it is followed.
class RunningChild {
 public:
  RunningChild(Child& child, int process) : child_(child) {
    const std::lock_guard lock(child_.mutex_);
    child_.process_ = process;
    if (std::exchange(child_.terminateSoon_, false))
      pidfd_send_signal(process, SIGTERM, nullptr, 0);
  }
  ~RunningChild() {
    const std::lock_guard lock(child_.mutex_);
    child_.process_ = -1;
  }
  RunningChild(const RunningChild&) = delete;
  RunningChild& operator=(const RunningChild&) = delete;

 private:
  Child& child_;
};

ChildEnd Child::run(const std::string& program, std::vector<std::string> arguments,
                    const ChildEvents& events) {
  const bool isFollowed = events.onEvent || events.onPicture;
  ChildEnd end;
  Streams streams;
  if (!streams.open(isFollowed)) {
    end.startFault = errno;
    end.errors = std::string("No pipe to a process could be opened: ") + std::strerror(errno);
    return end;
  }
  if (isFollowed) arguments.push_back("--caller=" + std::to_string(kCallerSocket));
  std::string name = program;
  std::vector<char*> words{name.data()};
  for (std::string& argument : arguments)
    words.push_back(argument.data());
  words.push_back(nullptr);
  const SpawnActions actions(streams.output.theirs.get(), streams.errors.theirs.get(),
                             streams.socket.theirs.get());
  const SpawnAttributes attributes;
  pid_t child = -1;
  const int fault =
      posix_spawnp(&child, program.c_str(), actions.get(), attributes.get(), words.data(), environ);
  streams.closeTheirs();
  if (fault != 0) {
    end.startFault = fault;
    end.errors = "\"" + program + "\" could not be started: " + std::strerror(fault);
    return end;
  }
  end.started = true;
  const Descriptor process(pidfd_open(child, 0));
  // Where the caller ignores its children it may be gone already.
  if (!process.isOpen() && errno != ESRCH) {
    giveUp(child, errno, end);
    return end;
  }
  {
    const RunningChild running(*this, process.get());
    streams.follow(process.get(), end, events);
  }
  readExit(child, end);
  const std::lock_guard lock(mutex_);
  end.wasTerminated = wasTerminated_;
  return end;
}

void Child::terminate() {
  const std::lock_guard lock(mutex_);
  wasTerminated_ = true;
  if (process_ >= 0) {
    pidfd_send_signal(process_, SIGTERM, nullptr, 0);
  } else {
    terminateSoon_ = true;
  }
}

}  // namespace corvana::client
