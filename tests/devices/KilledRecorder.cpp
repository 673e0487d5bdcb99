// Records ten seconds of a film whose sound never begins and dies as a process does that is killed:
// nothing is flushed, nothing is closed.

#include <csignal>

#include "MediaTestSupport.h"

int main(int, char** argv) {
  platform::VirtualRunLoop loop;
  const auto film = devices::test::openFilm(loop, argv[1]);
  for (int index = 0; film && index < 300; ++index)
    (*film)->appendVideo(devices::test::frame(index));
  std::raise(SIGKILL);
}
