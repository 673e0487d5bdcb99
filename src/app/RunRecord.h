#pragma once

#include <filesystem>
#include <string>

#include <nlohmann/json.hpp>
#include <tl/expected.hpp>

#include "app/Files.h"
#include "app/Resources.h"
#include "capture/Corvana+VideoCapture.h"
#include "corvana/IDError.h"
#include "platform/media/AssetWriter.h"

namespace app {

using Outcome = tl::expected<capture::VideoIdResult, corvana::IDError>;

/// What a run leaves in its folder beside the film: the selfie and result.json, whose hashes bind
/// the files together. docs/result.schema.json gives its shape.
struct RunRecord {
  Outcome outcome;
  platform::AssetWriterCounters recording;
  int runs = 1;  ///< how often the flow began: once more than it was retried
};

inline constexpr const char* kResultFileName = "result.json";
inline constexpr const char* kSelfieFileName = "selfie.png";

/// Writes the selfie and result.json and returns the latter's content. The film and the events must
/// be closed.
Expected<nlohmann::ordered_json> writeRunRecord(const RunRecord& record, const Resources& resources,
                                                const std::filesystem::path& folder);

/// Compares the files of a run's folder with the hashes in its result.json; the names of the files
/// that are as they were. The error names the first that differs or is missing.
Expected<std::vector<std::string>> verifyRun(const std::filesystem::path& folder);

}  // namespace app
