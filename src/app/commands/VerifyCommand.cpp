#include <iostream>
#include <memory>

#include "app/commands/Commands.h"
#include "app/commands/TrustOptions.h"
#include "app/seal/RecordCheck.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

struct VerifyArguments {
  fs::path folder;
  TrustChoice trust;
};

ExitCode runVerify(const VerifyArguments& arguments) {
  const auto trust = loadTrust(arguments.trust);
  if (!trust) return refuse(trust.error());
  const auto report =
      checkRecord(arguments.folder, trust->keysOrNull(), trust->authoritiesOrNull());
  if (!report) return refuse(report.error());
  for (const RecordFinding& finding : report->findings) {
    if (finding.holds) {
      std::cout << finding.part << ": " << finding.sentence << '\n';
    } else {
      complain(std::cerr, ExitCode::flowError, finding.sentence);
    }
  }
  return report->holds() ? ExitCode::result : ExitCode::flowError;
}

}  // namespace

void addVerifyCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command = *app.add_subcommand(
      "verify", "Check that a run's record is what was recorded, and who vouches for it");
  auto arguments = std::make_shared<VerifyArguments>();
  command.add_option("folder", arguments->folder, "the run's folder")->required();
  addTrustOptions(command, arguments->trust);
  command.callback([arguments, &exitCode] { exitCode = runVerify(*arguments); });
}

}  // namespace corvana::app
