#include <iostream>

#include <nlohmann/json.hpp>

#include "app/commands/Commands.h"

namespace corvana::app {
namespace {

using nlohmann::ordered_json;

ordered_json described(const CLI::Option& option) {
  ordered_json entry = {{"meaning", option.get_description()}, {"required", option.get_required()}};
  if (option.get_positional()) {
    entry["name"] = option.get_name(true);
    return entry;
  }
  entry["names"] = ordered_json::array();
  for (const std::string& name : option.get_snames())
    entry["names"].push_back("-" + name);
  for (const std::string& name : option.get_lnames())
    entry["names"].push_back("--" + name);
  entry["takesValue"] = option.get_expected_max() > 0;
  return entry;
}

ordered_json described(const CLI::App& command) {
  ordered_json entry = {{"name", command.get_name()},
                        {"meaning", command.get_description()},
                        {"arguments", ordered_json::array()},
                        {"options", ordered_json::array()},
                        {"commands", ordered_json::array()}};
  for (const CLI::Option* option : command.get_options())
    entry[option->get_positional() ? "arguments" : "options"].push_back(described(*option));
  for (const CLI::App* child : command.get_subcommands([](const CLI::App*) { return true; }))
    entry["commands"].push_back(described(*child));
  return entry;
}

}  // namespace

void addCommandsCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command =
      *app.add_subcommand("commands", "List every command with its arguments and options, as JSON");
  command.callback([&app, &exitCode] {
    std::cout << described(app).dump(2) << '\n';
    exitCode = ExitCode::result;
  });
}

}  // namespace corvana::app
