#include <cerrno>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "app/StandardStreams.h"

namespace corvana::tests {
namespace {

TEST(StandardStreamsDeathTest, NoFileTakesThePlaceOfAClosedOne) {
  const auto openFile = [] {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
      ::close(stream);
    app::keepStandardStreams();
    const int file = ::open("/dev/zero", O_RDONLY);
    ::_exit(file > STDERR_FILENO && ::write(STDOUT_FILENO, "x", 1) == 1 ? 0 : 1);
  };
  EXPECT_EXIT(openFile(), testing::ExitedWithCode(0), "");
}

TEST(StandardStreamsDeathTest, TheProgramOutlivesItsReader) {
  const auto print = [] {
    int pipe[2];
    if (::pipe(pipe) != 0) ::_exit(2);
    ::close(pipe[0]);
    app::keepStandardStreams();
    ::_exit(::write(pipe[1], "x", 1) == -1 && errno == EPIPE ? 0 : 1);
  };
  EXPECT_EXIT(print(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace corvana::tests
