#include "engine/document/kinds/DocumentTables.h"

#include <system_error>
#include <utility>

#include "engine/document/kinds/DataFolder.h"
#include "engine/json/JsonFile.h"

namespace corvana::engine {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLabels = "labels";

/// Where the tables lie that a folder has, or that a file is.
struct Sources {
  std::vector<fs::path> kinds;
  std::vector<fs::path> labels;
};

platform::Expected<void> find(const fs::path& place, Sources& sources) {
  std::error_code error;
  const bool isFile = fs::is_regular_file(place, error);
  if (isFile && place.parent_path().filename() == kLabels) {
    sources.labels.push_back(place);
    return {};
  }
  const auto files = dataFilesIn(place);
  if (!files) return tl::unexpected(files.error());
  const bool hasLabels = !isFile && fs::exists(place / kLabels, error);
  if (hasLabels) sources.labels.push_back(place / kLabels);
  if (!files->empty()) sources.kinds.push_back(place);
  if (!files->empty() || hasLabels) return {};
  return platform::failure(inQuotes(place) +
                           " holds no kind of document, which is a file that ends in .json, and "
                           "no folder of labels; name another folder.");
}

platform::Expected<std::vector<fs::path>> filesIn(const Sources& sources) {
  std::vector<fs::path> all;
  for (const auto* places : {&sources.kinds, &sources.labels}) {
    for (const fs::path& place : *places) {
      const auto files = dataFilesIn(place);
      if (!files) return tl::unexpected(files.error());
      all.insert(all.end(), files->begin(), files->end());
    }
  }
  return all;
}

}  // namespace

platform::Expected<DocumentTables> loadDocumentTables(const std::vector<fs::path>& places) {
  Sources sources;
  for (const auto& place : places) {
    if (auto found = find(place, sources); !found) return tl::unexpected(found.error());
  }
  auto kinds = DocumentKinds::load(sources.kinds);
  if (!kinds) return tl::unexpected(kinds.error());
  auto labels = FieldLabels::load(sources.labels);
  if (!labels) return tl::unexpected(labels.error());
  auto files = filesIn(sources);
  if (!files) return tl::unexpected(files.error());
  return DocumentTables{std::move(*kinds), std::move(*labels), std::move(*files)};
}

}  // namespace corvana::engine
