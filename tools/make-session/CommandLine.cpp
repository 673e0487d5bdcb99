#include "CommandLine.h"

#include <exception>
#include <iostream>

namespace corvana::session {

int runTool(const Tool& tool, int argc, char** argv) {
  try {
    CLI::App app(tool.description);
    tool.addOptions(app);
    try {
      app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
      return app.exit(error) == 0 ? 0 : 2;
    }
    const auto done = tool.run();
    if (done) return 0;
    std::cerr << tool.name << ": " << done.error() << '\n';
  } catch (const std::exception& error) {
    std::cerr << tool.name << ": an unexpected fault: " << error.what() << '\n';
  }
  return 1;
}

}  // namespace corvana::session
