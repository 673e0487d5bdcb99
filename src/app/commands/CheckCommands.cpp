#include <algorithm>
#include <iostream>

#include "app/commands/Commands.h"
#include "app/machine/MachineCheck.h"
#include "app/machine/MachineSpeed.h"
#include "app/run/CaptureArguments.h"
#include "app/settings/OptionTable.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

/// Prints each finding with its cure; whether all are fine.
bool print(const std::vector<Finding>& findings, const char* mark) {
  for (const Finding& finding : findings) {
    std::cout << (finding.fine ? "ok       " : mark) << finding.what;
    if (!finding.fine) std::cout << ": " << finding.cure;
    std::cout << '\n';
  }
  return std::ranges::all_of(findings, &Finding::fine);
}

ExitCode runDoctor(const fs::path& folder, bool measures) {
  const Resources resources = findResources();
  std::vector<Finding> findings = examine(resources);
  findings.push_back(diskSpace(folder, bytesNeeded(nullptr, kUsualLimitSeconds)));
  if (!print(findings, "LACKING  ")) return ExitCode::machineLacks;
  if (!measures) return ExitCode::result;
  const auto speeds = measureMachine(resources);
  if (!speeds) return complain(std::cerr, ExitCode::machineLacks, speeds.error().sentence);
  return print(*speeds, "SLOW     ") ? ExitCode::result : ExitCode::machineLacks;
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
  auto measures = std::make_shared<bool>(false);
  command.add_flag(
      "--measure", *measures,
      "also measure for some seconds whether the machine is fast enough for live runs");
  command.callback([=, &exitCode] { exitCode = runDoctor(*folder, *measures); });
}

void addOptionsCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command =
      *app.add_subcommand("options", "List every option with unit, default and meaning");
  command.add_flag_callback(
      "--print", [] {}, "print the list as JSON, as it does anyway");
  command.callback([&exitCode] { exitCode = runOptions(); });
}

}  // namespace corvana::app
