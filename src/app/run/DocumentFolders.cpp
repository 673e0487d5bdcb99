#include "app/run/DocumentFolders.h"

namespace corvana::app {

std::vector<std::filesystem::path> documentFolders(const Resources& resources,
                                                   const DocumentChoice& choice) {
  std::vector<std::filesystem::path> folders{resources.documents()};
  if (choice.folder) folders.push_back(*choice.folder);
  return folders;
}

tl::expected<engine::DocumentTables, Refusal> loadDocuments(const Resources& resources,
                                                            const DocumentChoice& choice) {
  auto own = engine::loadDocumentTables({resources.documents()});
  if (!own) return tl::unexpected(Refusal{ExitCode::machineLacks, own.error().sentence});
  if (!choice.folder) return *std::move(own);
  auto all = engine::loadDocumentTables(documentFolders(resources, choice));
  if (!all) return tl::unexpected(Refusal{ExitCode::wrongUse, all.error().sentence});
  return *std::move(all);
}

}  // namespace corvana::app
