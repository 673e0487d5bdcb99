#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>

#include <unistd.h>

#include "CommandLine.h"
#include "Script.h"
#include "SessionCache.h"
#include "SessionMaker.h"

namespace corvana {
namespace {

namespace fs = std::filesystem;

struct Options {
  fs::path script;
  fs::path output;
  fs::path cache = session::SessionCache::usualPlace();
  fs::path models = CORVANA_FACE_MODELS;
  std::optional<std::uint64_t> seed;
};

session::Result<std::string> readFile(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::error_code ignored;
  if (in && fs::is_regular_file(file, ignored)) return text;
  return session::fault("The script " + file.string() + " cannot be read: correct the path.");
}

void showProgress(std::size_t done, std::size_t all) {
  if (isatty(STDERR_FILENO) == 0 || (done % 30 != 0 && done != all)) return;
  std::fprintf(stderr, "\rframe %zu of %zu%s", done, all, done == all ? "\n" : "");
}

session::Result<void> makeInto(const session::SessionCache& cache, const std::string& key,
                               const session::Script& script, const fs::path& models) {
  auto work = cache.workFolder(key);
  if (!work) return session::fault(work.error());
  auto made = session::makeSession(script, models, *work, showProgress);
  if (made) return cache.keep(*work, key);
  std::error_code ignored;
  fs::remove_all(*work, ignored);
  return made;
}

session::Result<void> run(const Options& options) {
  auto text = readFile(options.script);
  if (!text) return session::fault(text.error());
  auto script = session::parseScript(*text, options.script.parent_path());
  if (!script) return session::fault(script.error());
  if (options.seed) script->seed = *options.seed;

  std::vector<fs::path> files = session::referencedFiles(*script);
  for (const char* model : {"face_detection_short_range.tflite", "face_landmark.tflite"})
    files.push_back(options.models / model);
  auto key = session::sessionKey(*text, script->seed, files);
  if (!key) return session::fault(key.error());

  const session::SessionCache cache(options.cache, session::sessionFiles(script->stills));
  if (!cache.has(*key))
    if (auto made = makeInto(cache, *key, *script, options.models); !made) return made;
  return cache.deliver(*key, options.output);
}

void addOptions(CLI::App& app, Options& options) {
  app.add_option("SCRIPT", options.script, "The script, a JSON file")->required();
  app.add_option("--output", options.output, "Folder for the session's files")->required();
  app.add_option("--cache", options.cache, "Folder of sessions made before")->capture_default_str();
  app.add_option("--models", options.models, "Folder of the face models")->capture_default_str();
  app.add_option("--seed", options.seed, "In place of the script's seed");
}

}  // namespace
}  // namespace corvana

int main(int argc, char** argv) {
  corvana::Options options;
  return corvana::session::runTool(
      {"make-session",
       "Makes a recorded session (a film of a person who shows a card and reads a text, and stills "
       "of the card) from a script. samples/README.md describes the script.",
       [&](CLI::App& app) { corvana::addOptions(app, options); },
       [&] { return corvana::run(options); }},
      argc, argv);
}
