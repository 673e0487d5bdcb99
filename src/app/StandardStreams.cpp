#include "app/StandardStreams.h"

#include <csignal>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

namespace corvana::app {

void keepStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    // The lowest number that is free is taken.
    if (::fcntl(stream, F_GETFD) == -1) ::open("/dev/null", O_RDWR);
  }
  std::signal(SIGPIPE, SIG_IGN);
}

ExitCode finishPrinting(ExitCode exitCode) {
  if (std::cout.flush() || exitCode != ExitCode::result) return exitCode;
  return complain(std::cerr, ExitCode::machineLacks,
                  "Standard output can't be written to: see that it has room and a reader.");
}

}  // namespace corvana::app
