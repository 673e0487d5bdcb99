#include <array>
#include <chrono>
#include <future>
#include <string>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "app/run/CallerLink.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana::tests {
namespace {

/// Far more than a socket holds.
constexpr int kEvents = 20'000;

bool hasRoom(int socket) {
  pollfd room{socket, POLLOUT, 0};
  return ::poll(&room, 1, 0) == 1;
}

/// How many messages come until the other end is closed.
int messagesFrom(int socket) {
  std::array<char, 256> message{};
  int count = 0;
  while (::recv(socket, message.data(), message.size(), 0) > 0)
    ++count;
  return count;
}

TEST(CallerLinkTest, NoEventIsLostHoweverTheCallerSetItsSocket) {
  for (const int flags : {0, O_NONBLOCK}) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends.data()), 0);
    const auto [caller, program] = ends;
    ASSERT_EQ(::fcntl(program, F_SETFL, flags), 0);
    platform::VirtualRunLoop loop;
    const auto screen = app::makeHeadlessScreen(loop);
    bool isGone = false;
    app::CallerLink link(loop, *screen, {.socket = program}, [&] { isGone = true; });
    const auto told = std::async(std::launch::async, [&, socket = program] {
      for (int i = 0; i < kEvents; ++i)
        link.tell("{\"event\": \"caption\"}\n");
      ::shutdown(socket, SHUT_WR);
    });
    const auto hasEnded = [&] {
      return told.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    };
    while (hasRoom(program) && !hasEnded())
      std::this_thread::yield();
    EXPECT_EQ(messagesFrom(caller), kEvents);
    told.wait();
    EXPECT_FALSE(isGone);
    ::close(caller);
    ::close(program);
  }
}

}  // namespace
}  // namespace corvana::tests
