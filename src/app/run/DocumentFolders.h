#pragma once

#include <filesystem>
#include <vector>

#include "app/run/CalendarDay.h"
#include "app/run/ExitCode.h"
#include "app/run/Resources.h"
#include "engine/document/kinds/DocumentTables.h"

namespace corvana::app {

/// Where kinds of documents lie: those of the program, and after them the user's.
std::vector<std::filesystem::path> documentFolders(const Resources& resources,
                                                   const DocumentChoice& choice);

/// Reads them all. A fault in the user's files is theirs to mend, one in the program's is the
/// machine's lack.
tl::expected<engine::DocumentTables, Refusal> loadDocuments(const Resources& resources,
                                                            const DocumentChoice& choice);

}  // namespace corvana::app
