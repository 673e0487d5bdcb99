#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "app/commands/Commands.h"
#include "app/commands/TrustOptions.h"
#include "app/redact/RecordRedaction.h"
#include "app/run/Resources.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

struct RedactArguments {
  RecordRedaction wishes;
  std::optional<fs::path> disclosures;
  std::optional<fs::path> key;
  TrustChoice trust;
};

/// Beside the copy, which they are no part of.
fs::path usualDisclosures(const fs::path& output) {
  return fs::absolute(output / "").lexically_normal().parent_path().string() + ".disclosures.json";
}

ExitCode runRedact(const RedactArguments& arguments) {
  RecordRedaction wishes = arguments.wishes;
  wishes.disclosures = arguments.disclosures.value_or(usualDisclosures(wishes.output));
  if (arguments.key) {
    auto key = SigningKey::load(*arguments.key);
    if (!key) return refuse(key.error());
    wishes.key = std::move(*key);
  }
  const auto trust = loadTrust(arguments.trust);
  if (!trust) return refuse(trust.error());
  wishes.keys = trust->keysOrNull();
  wishes.authorities = trust->authoritiesOrNull();
  const auto pictures = redactRecord(wishes, findResources());
  if (!pictures) return complain(std::cerr, pictures.error());
  std::cout << wishes.output.string() << ": " << pictures->withHead << " of " << pictures->all
            << " pictures show the head, all else is covered\n"
            << wishes.disclosures.string() << ": the texts that were taken out; keep it\n";
  return ExitCode::result;
}

}  // namespace

void addRedactCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command = *app.add_subcommand(
      "redact", "Copy a run's record for people who may not see the card or what is around");
  auto arguments = std::make_shared<RedactArguments>();
  RecordRedaction& wishes = arguments->wishes;
  command.add_option("folder", wishes.folder, "the run's folder")->required();
  command.add_option("--output", wishes.output, "new folder for the copy")->required();
  command.add_flag("--mute", wishes.isSilent,
                   "without sound, and without the words that were read");
  command.add_flag("--cover-face", wishes.coversFace, "the person's face is not shown either");
  command.add_option("--disclosures", arguments->disclosures,
                     "new file for the texts that were taken out (default: the copy's name with "
                     ".disclosures.json)");
  command.add_option("--key", arguments->key,
                     "private key that seals the copy, made by `videoid key new`");
  command.add_option("--keys", arguments->trust.keys,
                     "JSON Web Key Set of all machines: one of them must vouch for the run");
  command.add_option("--stamp-ca", arguments->trust.authorities,
                     "PEM certificates of the authorities whose time stamps count");
  command.callback([arguments, &exitCode] { exitCode = runRedact(*arguments); });
}

}  // namespace corvana::app
