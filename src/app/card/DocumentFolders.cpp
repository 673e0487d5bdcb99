#include "app/card/DocumentFolders.h"

#include <utility>

namespace corvana::app {

tl::expected<std::shared_ptr<const engine::DocumentTables>, Refusal> loadDocuments(
    const Resources& resources, const DocumentChoice& choice) {
  std::vector<std::filesystem::path> folders{resources.documents()};
  if (choice.folder) folders.push_back(*choice.folder);
  auto tables = engine::loadDocumentTables(folders);
  if (tables) return std::make_shared<const engine::DocumentTables>(std::move(*tables));
  const bool isOwnFault = !choice.folder || !engine::loadDocumentTables({resources.documents()});
  return tl::unexpected(
      Refusal{isOwnFault ? ExitCode::machineLacks : ExitCode::wrongUse, tables.error().sentence});
}

}  // namespace corvana::app
