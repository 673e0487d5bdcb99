#include <iostream>

#include "app/commands/Commands.h"
#include "app/run/CaptureArguments.h"
#include "app/run/MachineCheck.h"
#include "app/settings/OptionTable.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

ExitCode runDoctor(const fs::path& folder) {
  bool fine = true;
  std::vector<Finding> findings = examine(findResources());
  findings.push_back(diskSpace(folder, bytesNeeded(nullptr, kUsualLimitSeconds)));
  for (const Finding& finding : findings) {
    std::cout << (finding.fine ? "ok       " : "LACKING  ") << finding.what;
    if (!finding.fine) std::cout << ": " << finding.cure;
    std::cout << '\n';
    fine = fine && finding.fine;
  }
  return fine ? ExitCode::result : ExitCode::machineLacks;
}

ExitCode runOptions() {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const OptionInfo& option : listOptions()) {
    nlohmann::ordered_json entry = {{"key", option.key}};
    if (!option.unit.empty()) entry["unit"] = option.unit;
    entry["default"] = option.defaultValue;
    entry["meaning"] = option.meaning;
    list.push_back(std::move(entry));
  }
  std::cout << list.dump(2) << '\n';
  return ExitCode::result;
}

}  // namespace

void addDoctorCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command =
      *app.add_subcommand("doctor", "Say what the machine lacks, and the package that cures it");
  auto folder = std::make_shared<fs::path>(".");
  command.add_option("--output", *folder, "folder whose disk space is looked at (default: here)");
  command.callback([folder, &exitCode] { exitCode = runDoctor(*folder); });
}

void addOptionsCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command =
      *app.add_subcommand("options", "List every option with unit, default and meaning");
  command.add_flag_callback(
      "--print", [] {}, "print the list as JSON, as it does anyway");
  command.callback([&exitCode] { exitCode = runOptions(); });
}

}  // namespace corvana::app
