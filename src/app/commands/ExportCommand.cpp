#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "app/commands/Commands.h"
#include "app/privacy/Export.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

struct ExportArguments {
  fs::path folder;
  std::string recipient;
  std::optional<fs::path> archive;
};

fs::path usualArchive(const fs::path& folder) {
  return fs::absolute(folder / "").lexically_normal().parent_path().string() + ".tar.age";
}

ExitCode runExport(const ExportArguments& arguments) {
  const fs::path archive = arguments.archive.value_or(usualArchive(arguments.folder));
  const auto exported = exportRun(arguments.folder, arguments.recipient, archive);
  if (!exported) return complain(std::cerr, exported.error());
  std::cout << archive.string() << '\n';
  return ExitCode::result;
}

}  // namespace

void addExportCommand(CLI::App& app, ExitCode& exitCode) {
  CLI::App& command = *app.add_subcommand(
      "export", "Write a run's folder as an archive that only its recipient can open (age)");
  auto arguments = std::make_shared<ExportArguments>();
  command.add_option("folder", arguments->folder, "the run's folder")->required();
  command
      .add_option("--to", arguments->recipient,
                  "public key of the recipient (age1… or ssh-…), or a file of such keys")
      ->required();
  command.add_option("--output", arguments->archive,
                     "new file (default: the folder's name with .tar.age)");
  command.callback([arguments, &exitCode] { exitCode = runExport(*arguments); });
}

}  // namespace corvana::app
