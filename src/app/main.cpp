#include <exception>
#include <iostream>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>
#include <malloc.h>

#include "app/StandardStreams.h"
#include "app/commands/CaptureCommand.h"
#include "app/commands/Commands.h"
#include "app/record/Files.h"
#include "app/simulate/ScreensCommand.h"
#include "app/simulate/SimulateCommand.h"

namespace corvana::app {
namespace {

/// The parser says of a name that it does not know only that a command is missing.
bool namesCommand(const CLI::App& program, int argc, char** argv) {
  const std::string_view first = argc > 1 ? argv[1] : "-";
  const auto isMeant = [&](const CLI::App* command) { return command->get_name() == first; };
  return first.starts_with('-') || !program.get_subcommands(isMeant).empty();
}

ExitCode run(int argc, char** argv) {
  ExitCode exitCode = ExitCode::result;
  CLI::App program(
      "Proves in one continuous video that a person and an identity card belong together.\n"
      "A run: `videoid enroll` reads photos of the card, `videoid capture` films the person who\n"
      "looks into the camera, shows the card's front and back and reads a text aloud.",
      "videoid");
  program.set_version_flag("--version", "videoid " CORVANA_VERSION);
  program.require_subcommand(1);
  program.footer(
      "Exit code: 0 result, 1 the flow ended with an error, 2 wrong use, 3 the machine lacks "
      "something.");
  app::addEnrollCommand(program, exitCode);
  app::addCaptureCommand(program, exitCode);
  app::addSimulateCommand(program, exitCode);
  app::addScreensCommand(program, exitCode);
  app::addKeyCommand(program, exitCode);
  app::addVerifyCommand(program, exitCode);
  app::addRecheckCommand(program, exitCode);
  app::addReportCommand(program, exitCode);
  app::addRedactCommand(program, exitCode);
  app::addExportCommand(program, exitCode);
  app::addPurgeCommand(program, exitCode);
  app::addTimestampCommand(program, exitCode);
  app::addCompareCommand(program, exitCode);
  app::addEmbedCommand(program, exitCode);
  app::addDevicesCommand(program, exitCode);
  app::addDocumentsCommand(program, exitCode);
  app::addDoctorCommand(program, exitCode);
  app::addOptionsCommand(program, exitCode);
  app::addCommandsCommand(program, exitCode);
  if (!namesCommand(program, argc, argv)) {
    return refuse("There is no command " + inQuotes(argv[1]) + "; `videoid --help` lists them.");
  }
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return program.exit(error) == 0 ? ExitCode::result : ExitCode::wrongUse;
  }
  return exitCode;
}

/// Every film starts and ends a dozen threads. Were each to allocate from an arena of its own, what
/// the last film freed would stay out of the next one's reach, and the process grow with each
/// retry.
void shareOneArena() {
  mallopt(M_ARENA_MAX, 1);
}

}  // namespace
}  // namespace corvana::app

int main(int argc, char** argv) {
  namespace app = corvana::app;
  app::keepStandardStreams();
  app::shareOneArena();
  try {
    return static_cast<int>(app::finishPrinting(app::run(argc, argv)));
  } catch (const std::exception& error) {
    return static_cast<int>(app::complain(std::cerr, app::ExitCode::machineLacks,
                                          std::string("an unexpected fault: ") + error.what()));
  }
}
