#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "app/commands/Commands.h"
#include "app/commands/TrustOptions.h"
#include "app/record/Files.h"
#include "app/record/RecordFiles.h"
#include "app/report/ReportFile.h"
#include "app/report/ReportPage.h"
#include "app/run/Resources.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

struct ReportArguments {
  fs::path folder;
  std::optional<fs::path> output;
  std::string language = "en";
  TrustChoice trust;
};

ExitCode runReport(const ReportArguments& arguments) {
  const fs::path resources = findResources().report;
  const fs::path languages = resources / "languages";
  if (ReportWords::languagesIn(languages).empty()) {
    return complain(std::cerr, ExitCode::machineLacks,
                    "The words of reports are missing in " + inQuotes(languages) +
                        ": install the program's resources again.");
  }
  const auto words = ReportWords::load(languages, arguments.language);
  if (!words) return refuse(words.error());
  const auto trust = loadTrust(arguments.trust);
  if (!trust) return refuse(trust.error());
  const auto run =
      RunFolder::read(arguments.folder, trust->keysOrNull(), trust->authoritiesOrNull());
  if (!run) return refuse(run.error());
  const fs::path output = arguments.output.value_or(arguments.folder / kReportFileName);
  if (output != arguments.folder / kReportFileName) {
    const auto free = checkNewFile(arguments.folder, output, "--output");
    if (!free) return refuse(free.error());
  }
  const std::string film = run->film ? addressOf(arguments.folder / *run->film, output) : "";
  const auto page = makeReportPage(*run, *words, trust->keys.has_value(), film, resources);
  if (!page) return complain(std::cerr, ExitCode::machineLacks, page.error().sentence);
  if (const auto written = writeFile(output, *page); !written) return refuse(written.error());
  std::cout << output.string() << '\n';
  return ExitCode::result;
}

}  // namespace

void addReportCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command = *app.add_subcommand(
      "report", "Make a page that shows people what a run's record holds, and what it is worth");
  auto arguments = std::make_shared<ReportArguments>();
  command.add_option("folder", arguments->folder, "the run's folder")->required();
  command.add_option("--output", arguments->output,
                     "new file for the page (default: report.html in the run's folder, where an "
                     "older one is replaced)");
  command.add_option("--language", arguments->language,
                     "of the page: ar, de, en (default), es or fr");
  addTrustOptions(command, arguments->trust);
  command.callback([arguments, &exitCode] { exitCode = runReport(*arguments); });
}

}  // namespace corvana::app
