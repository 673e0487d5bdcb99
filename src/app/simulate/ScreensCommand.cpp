#include "app/simulate/ScreensCommand.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <sstream>

#include "app/record/Files.h"
#include "app/run/FlowScreen.h"
#include "app/settings/OptionTable.h"
#include "app/simulate/SimulateScript.h"
#include "app/simulate/Simulation.h"
#include "corvana/HostTables.h"
#include "platform/foundation/Fault.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> flowsIn(const Resources& resources) {
  std::vector<fs::path> flows;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(resources.storyboards / "flows", error)) {
    if (entry.path().extension() == ".json") flows.push_back(entry.path());
  }
  std::ranges::sort(flows);
  return flows;
}

/// One theme at one size.
struct Gallery {
  const ScreensOptions& options;
  fs::path theme;
  platform::CGSize size;
  std::ostream& out;

  fs::path fileFor(const std::string& state) const {
    std::ostringstream name;
    name << theme.stem().string() << '-' << size.width << 'x' << size.height << '-' << state
         << ".png";
    return options.folder / name.str();
  }

  Expected<void> play(const fs::path& flow) const {
    const Resources& resources = options.resources;
    corvana::hostTables() = corvana::defaultsOf(corvana::hostTables());
    WindowWishes wishes;
    wishes.size = size;
    if (auto dressed = applyLooks({true, options.language, theme}, resources, wishes.looks);
        !dressed) {
      return dressed;
    }
    auto script = loadSimulateScript(flow);
    if (!script) return tl::unexpected(script.error());
    if (auto applied = applyOptions(script->options); !applied) return applied;
    std::ostringstream unread;
    Simulation simulation(std::move(*script), resources.module, unread, [&](auto& loop) {
      return makePictureScreen(loop, wishes, resources,
                               resources.storyboards / "flows" / "person.svg");
    });
    Expected<void> saved;
    simulation.onPicture = [&](FlowScreen& screen, const std::string& state) {
      const fs::path file = fileFor(state);
      if (screen.savePicture(file)) {
        out << file.string() << '\n';
      } else {
        saved = platform::failure("The picture " + inQuotes(file) +
                                  " can't be written; name another folder.");
      }
    };
    if (auto played = simulation.run(); !played) return tl::unexpected(played.error());
    return saved;
  }
};

}  // namespace

ExitCode runScreens(const ScreensOptions& options, std::ostream& out, std::ostream& err) {
  const auto flows = flowsIn(options.resources);
  if (flows.empty()) {
    return complain(err, ExitCode::machineLacks,
                    "The flows that the pictures are taken of are missing: install the program's "
                    "resources again.");
  }
  std::error_code error;
  fs::create_directories(options.folder, error);
  std::vector<fs::path> themes = options.themes;
  if (themes.empty()) {
    const fs::path folder = options.resources.storyboards / "themes";
    themes = {folder / "standard.json", folder / "daylight.json"};
  }
  for (const fs::path& theme : themes) {
    for (const platform::CGSize& size : options.sizes) {
      for (const fs::path& flow : flows) {
        const auto played = Gallery{options, theme, size, out}.play(flow);
        if (!played) return complain(err, ExitCode::wrongUse, played.error().sentence);
      }
    }
  }
  return ExitCode::result;
}

void addScreensCommand(CLI::App& app, ExitCode& exitCode) {
  auto options = std::make_shared<ScreensOptions>();
  CLI::App& command = *app.add_subcommand(
      "screens", "Take a picture of every state of the flow, at three sizes and in two themes");
  command.add_option("--out", options->folder, "folder for the pictures")->required();
  command.add_option("--theme", options->themes,
                     "JSON file of a theme in place of the two; see docs/screen.md");
  command.add_option("--language", options->language, languageHelp());
  command.callback([options, &exitCode] {
    options->resources = findResources();
    exitCode = runScreens(*options, std::cout, std::cerr);
  });
}

}  // namespace corvana::app
