#include <iostream>
#include <memory>

#include "app/commands/Commands.h"
#include "app/keys/SigningKey.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;

void print(const PublicKey& key, bool asPem) {
  std::cout << (asPem ? key.pem() : key.jwk().dump(2) + "\n");
}

ExitCode show(const platform::Expected<SigningKey>& key, bool asPem) {
  if (!key) return refuse(key.error());
  print(key->publicKey(), asPem);
  return ExitCode::result;
}

}  // namespace

void addKeyCommand(CLI::App& app, ExitCode& exitCode) {
  struct Arguments {
    fs::path file;
    bool pem = false;
  };
  CLI::App& command = *app.add_subcommand("key", "Make or show the key that seals records");
  command.require_subcommand(1);
  auto arguments = std::make_shared<Arguments>();
  CLI::App& makeNew = *command.add_subcommand(
      "new", "Make a private key in a new file of yours alone, and print its public half");
  CLI::App& showIt = *command.add_subcommand("show", "Print the public half of a key");
  for (CLI::App* each : {&makeNew, &showIt}) {
    each->add_option("--key", arguments->file, "file of the private key")->required();
    each->add_flag("--pem", arguments->pem, "print PEM, not a JSON Web Key");
  }
  makeNew.callback([arguments, &exitCode] {
    exitCode = show(SigningKey::create(arguments->file), arguments->pem);
  });
  showIt.callback([arguments, &exitCode] {
    exitCode = show(SigningKey::load(arguments->file), arguments->pem);
  });
}

}  // namespace corvana::app
