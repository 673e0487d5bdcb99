#pragma once

#include "app/run/ExitCode.h"

namespace corvana::app {

/// Before anything is opened or printed: puts /dev/null where a standard stream is closed, since a
/// file opened in its place, as the film, would get what is printed. Whoever reads along may go: a
/// run goes on without them.
void keepStandardStreams();

/// At the end: what could not be printed must not pass for printed.
ExitCode finishPrinting(ExitCode exitCode);

}  // namespace corvana::app
