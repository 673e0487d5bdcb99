#pragma once

#include <CLI/CLI.hpp>

#include "app/card/CalendarDay.h"

namespace corvana::app {

/// --date, --least-age and --documents.
void addDocumentOptions(CLI::App& command, DocumentChoice& choice);
/// --documents alone.
void addDocumentsFolder(CLI::App& command, DocumentChoice& choice);

}  // namespace corvana::app
