#include <cstdio>
#include <exception>
#include <iostream>
#include <map>
#include <string>

#include <CLI/CLI.hpp>
#include <unistd.h>

#include "PhotoMaker.h"

namespace corvana {
namespace {

void showProgress(int done, int all) {
  if (isatty(STDERR_FILENO) == 0) return;
  std::fprintf(stderr, "\rcard %d of %d%s", done, all, done == all ? "\n" : "");
}

int makePhotos(int argc, char** argv) {
  photos::Order order;
  order.data = CORVANA_PHOTO_DATA;
  order.portraits = CORVANA_PORTRAITS;
  order.models = CORVANA_FACE_MODELS;
  std::string output;
  CLI::App app(
      "Makes photographs of fictitious identity documents, as a phone would take them, and "
      "truth.json, which says what is on each. samples/README.md describes them.");
  app.add_option("--output", output, "Folder for the pictures and truth.json")->required();
  app.add_option("--count", order.count, "Cards; each gives a picture of every side it has")
      ->check(CLI::Range(1, 9999))
      ->capture_default_str();
  app.add_option("--seed", order.seed, "The same seed makes the same pictures")
      ->capture_default_str();
  app.add_option("--designs", order.designs, "Names of designs, with commas; all if left out")
      ->delimiter(',');
  app.add_option("--grounds", order.grounds,
                 "Names of grounds, with commas; those of each design if left out")
      ->delimiter(',');
  std::map<std::string, photos::Kind> kinds;
  for (const std::string& name : photos::kindNames())
    kinds.emplace(name, static_cast<photos::Kind>(kinds.size()));
  app.add_option("--kind", order.kind,
                 "What is photographed: original, altered, photocopy, screen, print or scan")
      ->transform(CLI::CheckedTransformer(kinds));
  app.add_flag("--unseen", order.unseen,
               "The designs that are set aside for the last measurement, and no others");
  app.add_option("--data", order.data, "Folder of designs/ and people.json")->capture_default_str();
  app.add_option("--portraits", order.portraits, "Folder of portraits, one person each")
      ->capture_default_str();
  app.add_option("--models", order.models, "Folder of the face models")->capture_default_str();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  }
  if (const auto made = photos::makePhotos(order, output, showProgress); !made) {
    std::cerr << "make-photos: " << made.error() << '\n';
    return 1;
  }
  return 0;
}

}  // namespace
}  // namespace corvana

int main(int argc, char** argv) {
  try {
    return corvana::makePhotos(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "make-photos: an unexpected fault: " << error.what() << '\n';
    return 1;
  }
}
