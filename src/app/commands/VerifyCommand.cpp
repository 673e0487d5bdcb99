#include <iostream>
#include <memory>
#include <optional>

#include "app/commands/Commands.h"
#include "app/seal/RecordCheck.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

struct VerifyArguments {
  fs::path folder;
  std::optional<fs::path> key;
  std::optional<fs::path> keys;
  std::optional<fs::path> authorities;
};

platform::Expected<std::optional<TrustedKeys>> trustedKeys(const VerifyArguments& arguments) {
  const auto some = [](TrustedKeys keys) { return std::optional(std::move(keys)); };
  if (arguments.key) return TrustedKeys::ofKey(*arguments.key).map(some);
  if (arguments.keys) return TrustedKeys::ofSet(*arguments.keys).map(some);
  return std::optional<TrustedKeys>();
}

platform::Expected<std::optional<StampAuthorities>> stampAuthorities(
    const VerifyArguments& arguments) {
  if (!arguments.authorities) return std::optional<StampAuthorities>();
  return StampAuthorities::load(*arguments.authorities).map([](StampAuthorities loaded) {
    return std::optional(std::move(loaded));
  });
}

ExitCode runVerify(const VerifyArguments& arguments) {
  const auto keys = trustedKeys(arguments);
  if (!keys) return complain(std::cerr, ExitCode::wrongUse, keys.error().sentence);
  const auto authorities = stampAuthorities(arguments);
  if (!authorities) return complain(std::cerr, ExitCode::wrongUse, authorities.error().sentence);
  const auto report = checkRecord(arguments.folder, *keys ? &**keys : nullptr,
                                  *authorities ? &**authorities : nullptr);
  if (!report) return complain(std::cerr, ExitCode::wrongUse, report.error().sentence);
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
  auto* key = command.add_option("--key", arguments->key,
                                 "public key of the machine that recorded it, PEM or JSON Web Key");
  command
      .add_option("--keys", arguments->keys,
                  "JSON Web Key Set of all machines, with the times for which each key holds; see "
                  "docs/evidence.md")
      ->excludes(key);
  command.add_option("--stamp-ca", arguments->authorities,
                     "PEM certificates of the authorities whose time stamps count");
  command.callback([arguments, &exitCode] { exitCode = runVerify(*arguments); });
}

}  // namespace corvana::app
