#pragma once

#include <memory>

#include "app/card/CalendarDay.h"
#include "app/run/ExitCode.h"
#include "app/run/Resources.h"
#include "engine/document/kinds/DocumentTables.h"

namespace corvana::app {

/// Reads the kinds of documents of the program, and after them the user's. A fault in the user's
/// files is theirs to mend, one in the program's is the machine's lack.
tl::expected<std::shared_ptr<const engine::DocumentTables>, Refusal> loadDocuments(
    const Resources& resources, const DocumentChoice& choice);

}  // namespace corvana::app
