#include <cstdio>
#include <map>
#include <string>

#include <unistd.h>

#include "CommandLine.h"
#include "PhotoMaker.h"

namespace corvana {
namespace {

void showProgress(int done, int all) {
  if (isatty(STDERR_FILENO) == 0) return;
  std::fprintf(stderr, "\rcard %d of %d%s", done, all, done == all ? "\n" : "");
}

struct Options {
  photos::Order order;
  std::string output;
};

Options usualOptions() {
  Options usual;
  usual.order.data = CORVANA_PHOTO_DATA;
  usual.order.portraits = CORVANA_PORTRAITS;
  usual.order.models = CORVANA_FACE_MODELS;
  return usual;
}

void addOptions(CLI::App& app, Options& options) {
  photos::Order& order = options.order;
  app.add_option("--output", options.output, "Folder for the pictures and truth.json")->required();
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
}

}  // namespace
}  // namespace corvana

int main(int argc, char** argv) {
  corvana::Options options = corvana::usualOptions();
  return corvana::session::runTool(
      {"make-photos",
       "Makes photographs of fictitious identity documents, as a phone would take them, and "
       "truth.json, which says what is on each. samples/README.md describes them.",
       [&](CLI::App& app) { corvana::addOptions(app, options); },
       [&] {
         return corvana::photos::makePhotos(options.order, options.output, corvana::showProgress);
       }},
      argc, argv);
}
