#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/recheck/RecordedRun.h"

namespace corvana::app {

/// What runs are judged by, beside their records.
struct RecheckSources {
  /// References, or folders of them.
  std::vector<std::filesystem::path> references = {};
  std::optional<std::string> text = {};
  std::vector<std::filesystem::path> textFiles = {};
  /// In place of the record's, where it says so.
  std::optional<std::filesystem::path> options = {};
  /// As that of `capture --documents`.
  std::optional<std::filesystem::path> documents = {};
};

/// The reference that the record names by its sums. Where none of several is it there is nothing to
/// judge by; a single one is taken whatever the record names.
platform::Expected<std::filesystem::path> referenceFor(const RecordedRun& run,
                                                       const RecheckSources& sources);

/// The text that the record names by its sum, in the same way; where none is given, the record's
/// own.
platform::Expected<std::string> textFor(const RecordedRun& run, const RecheckSources& sources);

}  // namespace corvana::app
