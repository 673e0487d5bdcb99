#include "engine/document/kinds/DocumentTables.h"

#include <system_error>
#include <utility>

namespace corvana::engine {

platform::Expected<DocumentTables> loadDocumentTables(
    const std::vector<std::filesystem::path>& folders) {
  auto kinds = DocumentKinds::load(folders);
  if (!kinds) return tl::unexpected(kinds.error());
  std::vector<std::filesystem::path> labelFolders;
  for (const auto& folder : folders) {
    std::error_code error;
    if (std::filesystem::exists(folder / "labels", error))
      labelFolders.push_back(folder / "labels");
  }
  auto labels = FieldLabels::load(labelFolders);
  if (!labels) return tl::unexpected(labels.error());
  return DocumentTables{std::move(*kinds), std::move(*labels)};
}

}  // namespace corvana::engine
