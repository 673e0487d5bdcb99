#include "app/simulate/SimulateCommand.h"

#include <iostream>
#include <memory>
#include <string>

#include "app/run/Resources.h"
#include "app/settings/OptionTable.h"
#include "app/simulate/SimulateScript.h"
#include "app/simulate/Simulation.h"
#include "corvana/IDCapture.h"
#include "corvana/SelfieCapture.h"

namespace corvana::app {
namespace {

template <class Capture>
void apply(const ScriptAppearance& appearance) {
  Capture::colors = appearance.colors;
  Capture::images.retryScreenImage = appearance.retryScreenImage;
}

}  // namespace

ExitCode runSimulate(const SimulateOptions& options, std::ostream& out, std::ostream& err) {
  const auto script = loadSimulateScript(options.script);
  if (!script) return complain(err, ExitCode::wrongUse, script.error().sentence);
  if (const auto applied = applyOptions(script->options); !applied) {
    return complain(err, ExitCode::wrongUse, applied.error().sentence);
  }
  apply<corvana::SelfieCapture>(script->selfieAppearance);
  apply<corvana::IDCapture>(script->cardAppearance);
  Simulation simulation(*script, options.resources, out);
  const auto end = simulation.run();
  if (!end) return complain(err, ExitCode::wrongUse, end.error().sentence);
  if (!*end) {
    return complain(err, ExitCode::wrongUse,
                    "The script ended before the flow did; add steps, or a tap on \"close\".");
  }
  return **end ? ExitCode::result : ExitCode::flowError;
}

void addSimulateCommand(CLI::App& app, ExitCode& exitCode) {
  auto options = std::make_shared<SimulateOptions>();
  CLI::App& command = *app.add_subcommand(
      "simulate", "Play a script of recorder states, speech and taps, and print what is seen");
  command.add_option("script", options->script, "the script, a JSON file; see samples/simulate")
      ->required();
  command.add_option("--resources", options->resources,
                     "folder of the module's resources (default: the program's own)");
  command.callback([options, &exitCode] {
    if (options->resources.empty()) options->resources = findResources().module;
    exitCode = runSimulate(*options, std::cout, std::cerr);
  });
}

}  // namespace corvana::app
