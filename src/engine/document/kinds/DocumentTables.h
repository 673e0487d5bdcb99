#pragma once

#include <filesystem>
#include <vector>

#include "engine/document/fields/FieldLabels.h"
#include "engine/document/kinds/DocumentKinds.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// What is known of documents before any is seen.
struct DocumentTables {
  DocumentKinds kinds;
  FieldLabels labels;
  std::vector<std::filesystem::path> files;  ///< from which it is known
};

/// Reads kinds of documents from folders, and labels of fields from the folder `labels` in each
/// that has one; or from single files. What a later place says is added to, and goes before, what
/// an earlier one does. The error is one sentence.
platform::Expected<DocumentTables> loadDocumentTables(
    const std::vector<std::filesystem::path>& places);

}  // namespace corvana::engine
