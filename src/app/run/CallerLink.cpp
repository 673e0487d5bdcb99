#include "app/run/CallerLink.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <nlohmann/json.hpp>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

namespace corvana::app {
namespace {

constexpr int kBytesPerPixel = 4;

bool writeWhole(int file, const unsigned char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t written = write(file, bytes, size);
    if (written <= 0) return false;
    bytes += written;
    size -= static_cast<std::size_t>(written);
  }
  return true;
}

bool isFull() {
  return errno == EAGAIN || errno == EWOULDBLOCK;
}

/// By a socket that the caller set not to wait, too.
void waitForRoom(int socket) {
  pollfd room{socket, POLLOUT, 0};
  poll(&room, 1, -1);
}

/// A message with a descriptor beside it, where there is one. Points into itself.
struct Message {
  Message(const std::string& text, int attached)
      : bytes{const_cast<char*>(text.data()), text.size()} {
    header.msg_iov = &bytes;
    header.msg_iovlen = 1;
    if (attached < 0) return;
    header.msg_control = control;
    header.msg_controllen = sizeof control;
    cmsghdr* rights = CMSG_FIRSTHDR(&header);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(sizeof attached);
    std::memcpy(CMSG_DATA(rights), &attached, sizeof attached);
  }
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  iovec bytes;
  alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
  msghdr header = {};
};

}  // namespace

bool CallerLink::isPossible(int socket) {
  int type = 0;
  socklen_t size = sizeof type;
  return getsockopt(socket, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET;
}

CallerLink::CallerLink(platform::RunLoop& loop, FlowScreen& screen, const Setup& setup,
                       std::function<void()> onGone)
    : loop_(loop),
      screen_(screen),
      socket_(setup.socket),
      onGone_(std::move(onGone)),
      start_(loop.now()) {
  if (setup.picturesPerSecond <= 0) return;
  timer_ = loop_.scheduledTimer(platform::seconds(1 / setup.picturesPerSecond), true,
                                [this] { showScreen(); });
}

CallerLink::~CallerLink() {
  if (timer_) timer_->invalidate();
}

void CallerLink::tell(const std::string& event) {
  send(event, -1, true);
}

void CallerLink::showScreen() {
  screen_.lookAtPixels([this](int width, int height, const unsigned char* pixels) {
    const int file = memfd_create("corvana-picture", MFD_CLOEXEC);
    if (file < 0) return;
    const auto size = static_cast<std::size_t>(width) * height * kBytesPerPixel;
    const nlohmann::ordered_json header = {{"t", platform::inSeconds(loop_.now() - start_)},
                                           {"event", "picture"},
                                           {"width", width},
                                           {"height", height}};
    if (writeWhole(file, pixels, size)) send(header.dump(), file, false);
    close(file);
  });
}

void CallerLink::send(const std::string& message, int attached, bool mayWait) {
  if (!onGone_) return;
  const Message whole(message, attached);
  const auto isSent = [&] {
    return sendmsg(socket_, &whole.header, MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
  };
  bool sent = isSent();
  while (!sent && (errno == EINTR || (mayWait && isFull()))) {
    if (isFull()) waitForRoom(socket_);
    sent = isSent();
  }
  if (!sent && !isFull()) std::exchange(onGone_, nullptr)();
}

}  // namespace corvana::app
