#include <algorithm>
#include <chrono>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "app/commands/Commands.h"
#include "app/privacy/Purge.h"
#include "app/record/Files.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

struct PurgeArguments {
  fs::path folder;
  std::optional<fs::path> key;
  std::optional<engine::CalendarDate> date;
  std::optional<int> unendedDays;
  bool dryRun = false;
};

/// Whoever believes that all is removed whose time is over must hear of them.
ExitCode tellUnclear(const std::vector<fs::path>& folders) {
  ExitCode code = ExitCode::result;
  for (const fs::path& folder : folders) {
    code = complain(std::cerr, ExitCode::flowError,
                    "It can't be told until when the run in " + inQuotes(folder) +
                        " is to be kept, so it stays: look at its result.json, and at its rights.");
  }
  return code;
}

ExitCode tellOnly(const std::vector<OverdueRun>& runs) {
  for (const OverdueRun& run : runs)
    std::cout << run.folder.string() << '\n';
  return ExitCode::result;
}

ExitCode tellDone(const std::vector<OverdueRun>& runs, const fs::path& receipt) {
  const auto removed = std::ranges::count(runs, true, &OverdueRun::removed);
  std::cout << removed << " runs removed; receipt: " << receipt.string() << '\n';
  ExitCode code = ExitCode::result;
  for (const OverdueRun& run : runs) {
    if (run.removed) continue;
    code = complain(std::cerr, ExitCode::flowError,
                    "The run in " + inQuotes(run.folder) +
                        " could not be removed whole: look at what is left in it, and at its "
                        "rights.");
  }
  return code;
}

ExitCode runPurge(const PurgeArguments& arguments) {
  const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
  const PurgeRules rules{arguments.date.value_or(std::chrono::floor<std::chrono::days>(now)),
                         arguments.unendedDays};
  auto found = findOverdue(arguments.folder, rules);
  if (!found) return refuse(found.error());
  std::vector<OverdueRun>& runs = found->runs;
  const ExitCode unclear = tellUnclear(found->unclear);
  if (arguments.dryRun) return std::max(unclear, tellOnly(runs));
  if (!arguments.key) return refuse("Give the key that signs the receipt with --key.");
  const auto key = SigningKey::load(*arguments.key);
  if (!key) return refuse(key.error());
  if (runs.empty()) {
    std::cout << "no run is over\n";
    return unclear;
  }
  const auto receipt = purge(arguments.folder, runs, rules, *key, now);
  if (!receipt) return refuse(receipt.error());
  return std::max(unclear, tellDone(runs, *receipt));
}

}  // namespace

void addPurgeCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command = *app.add_subcommand(
      "purge", "Remove the runs of a folder that are no longer to be kept, and leave a receipt");
  auto arguments = std::make_shared<PurgeArguments>();
  command.add_option("folder", arguments->folder, "folder that holds the folders of runs")
      ->required();
  command.add_option("--key", arguments->key,
                     "private key that signs the receipt, made by `videoid key new`");
  command.add_option_function<std::string>(
      "--date",
      [arguments](const std::string& text) {
        arguments->date = engine::calendarDate(text);
        if (!arguments->date) throw CLI::ValidationError("--date", "give a day as 2026-03-01");
      },
      "the day by which a run is over (default: today, UTC)");
  command
      .add_option("--unended-days", arguments->unendedDays,
                  "also runs that never ended, when nothing was written into them for so many days "
                  "(default: they stay)")
      ->check(CLI::Range(1, 36500).description(""));
  command.add_flag("--dry-run", arguments->dryRun, "only name the folders that would go");
  command.callback([arguments, &exitCode] { exitCode = runPurge(*arguments); });
}

}  // namespace corvana::app
