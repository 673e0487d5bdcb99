#include "app/recheck/RecheckSources.h"

#include <algorithm>

#include "app/card/Reference.h"
#include "app/keys/Sha256.h"
#include "app/record/Files.h"
#include "app/run/CaptureInputs.h"

namespace corvana::app {
namespace {

namespace fs = std::filesystem;
using platform::Expected;
using platform::failure;

std::vector<fs::path> referencesAmong(const std::vector<fs::path>& folders) {
  std::vector<fs::path> all;
  std::error_code error;
  for (const fs::path& folder : folders) {
    if (fs::exists(folder / kReferenceFileName, error)) {
      all.push_back(folder);
      continue;
    }
    std::vector<fs::path> below;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
      if (fs::exists(entry.path() / kReferenceFileName, error)) below.push_back(entry.path());
    }
    std::ranges::sort(below);
    all.insert(all.end(), below.begin(), below.end());
  }
  return all;
}

}  // namespace

Expected<fs::path> referenceFor(const RecordedRun& run, const RecheckSources& sources) {
  const auto all = referencesAmong(sources.references);
  // Whatever is amiss with a single folder, its reading says.
  if (all.empty() && sources.references.size() == 1) return sources.references.front();
  const auto recorded = run.result.value("reference", nlohmann::json());
  for (const fs::path& reference : all) {
    const auto sums = sumsOfReference(reference);
    if (sums && nlohmann::json(*sums) == recorded) return reference;
  }
  if (all.size() == 1) return all.front();
  return failure("None of the references is the one that " + inQuotes(run.folder) +
                 " was recorded with.");
}

Expected<std::string> textFor(const RecordedRun& run, const RecheckSources& sources) {
  std::vector<std::string> all;
  if (sources.text) all.push_back(*sources.text);
  for (const fs::path& file : sources.textFiles) {
    auto text = readText(file);
    if (!text) return tl::unexpected(text.error());
    all.push_back(std::move(*text));
  }
  if (all.empty() && run.text) return *run.text;
  for (const std::string& text : all) {
    if (sha256Of(text) == run.sum("text")) return text;
  }
  if (all.size() == 1) return all.front();
  return failure(all.empty() ? inQuotes(run.folder) +
                                   " does not hold the text that was to be read: give it with "
                                   "--text-file."
                             : "None of the texts is the one that " + inQuotes(run.folder) +
                                   " was recorded with.");
}

}  // namespace corvana::app
