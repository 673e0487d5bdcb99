#include <algorithm>
#include <iostream>
#include <memory>
#include <vector>

#include "app/commands/Commands.h"
#include "app/commands/DocumentOptions.h"
#include "app/commands/TrustOptions.h"
#include "app/recheck/RecheckOutput.h"
#include "app/record/RunRecord.h"
#include "app/seal/SealLog.h"
#include "engine/json/JsonText.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

struct RecheckArguments {
  std::vector<fs::path> runs;
  RecheckSources sources;
  DocumentChoice documents;
  TrustChoice trust;
  bool asJson = false;
};

bool isRun(const fs::path& folder) {
  std::error_code error;
  return fs::exists(folder / kResultFileName, error) ||
         fs::exists(folder / SealLog::kFileName, error);
}

/// A folder that is none of a run stands for the runs in it.
std::vector<fs::path> runsIn(const fs::path& folder) {
  std::vector<fs::path> runs;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (!isRun(folder) && isRun(entry.path())) runs.push_back(entry.path());
  }
  std::ranges::sort(runs);
  // What is wrong with it is said when it is read.
  if (runs.empty()) runs.push_back(folder);
  return runs;
}

tl::expected<RecheckReport, Refusal> recheckOne(const fs::path& folder, const Trust& trust,
                                                const RecheckSources& sources) {
  const auto run = readRecordedRun(folder, trust.keysOrNull(), trust.authoritiesOrNull());
  if (!run) return wrongUse(run.error());
  return recheck(*run, sources);
}

void print(const RecheckReport& report, bool asJson, bool isAlone) {
  if (asJson) {
    std::cout << engine::compactJson(reportToJson(report)) << std::endl;
  } else if (isAlone) {
    printReport(std::cout, report);
  } else {
    printSummary(std::cout, report);
  }
}

/// A run that differs weighs more than one that can't be judged.
ExitCode graver(ExitCode one, ExitCode other) {
  if (one == ExitCode::flowError || other == ExitCode::flowError) return ExitCode::flowError;
  return std::max(one, other);
}

ExitCode runRecheck(const RecheckArguments& arguments) {
  const auto trust = loadTrust(arguments.trust);
  if (!trust) return refuse(trust.error());
  std::vector<fs::path> runs;
  for (const fs::path& folder : arguments.runs) {
    for (fs::path& run : runsIn(folder))
      runs.push_back(std::move(run));
  }
  ExitCode worst = ExitCode::result;
  for (const fs::path& run : runs) {
    const auto report = recheckOne(run, *trust, arguments.sources);
    if (report) print(*report, arguments.asJson, runs.size() == 1);
    ExitCode code = ExitCode::result;
    if (!report) code = complain(std::cerr, report.error());
    if (report && !report->agrees()) code = ExitCode::flowError;
    worst = graver(worst, code);
  }
  return worst;
}

}  // namespace

void addRecheckCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command = *app.add_subcommand(
      "recheck", "Judge the films of runs again, and say where the records differ");
  auto arguments = std::make_shared<RecheckArguments>();
  RecheckSources& sources = arguments->sources;
  command.add_option("runs", arguments->runs, "folders of runs, or folders that hold such")
      ->required();
  command
      .add_option("--reference", sources.references,
                  "the card's earlier capture; of several, or of a folder of them, each run takes "
                  "the one that it names")
      ->required();
  command.add_option("--text", sources.text, "the text that was to be read");
  command.add_option("--text-file", sources.textFiles,
                     "file that holds the text; of several, each run takes the one that it names");
  command.add_option("--options", sources.options,
                     "JSON file of options that hold in place of the recorded ones");
  addDocumentsFolder(command, arguments->documents);
  addTrustOptions(command, arguments->trust);
  command.add_flag("--json", arguments->asJson, "a line of JSON for each run");
  command.footer(
      "Exit code: 0 agrees, 1 differs, 2 can't be judged, 3 the machine lacks something.");
  command.callback([arguments, &exitCode] {
    arguments->sources.documents = arguments->documents.folder;
    exitCode = runRecheck(*arguments);
  });
}

}  // namespace corvana::app
