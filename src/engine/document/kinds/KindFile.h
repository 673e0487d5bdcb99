#pragma once

#include <filesystem>

#include "engine/document/kinds/DocumentKind.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {

/// Reads the file of one kind, of the shape that docs/document.schema.json gives. The error is one
/// sentence that names the file, the key and what is wrong with it.
platform::Expected<DocumentKind> readKindFile(const std::filesystem::path& path);

}  // namespace corvana::engine
