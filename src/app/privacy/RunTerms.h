#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "engine/document/fields/CalendarDates.h"

namespace corvana::app {

/// In `kept` of result.json: the files that it names were removed on purpose.
inline constexpr const char* kKeptHashes = "hashes";

/// What becomes of a run that ended without a result.
enum class Remains {
  all,     ///< its folder stays as it is
  hashes,  ///< only result.json and its seal, which hold the SHA-256 of what was there
  nothing
};

/// On what terms a person is filmed.
struct RunTerms {
  std::optional<std::string> consent;  ///< bytes of its record
  std::optional<int> retainDays;       ///< absent: without end
};

/// The fields `consent` (SHA-256 of its record; absent where there is none) and `retention`.
nlohmann::ordered_json termsToJson(const RunTerms& terms, const engine::CalendarDate& today);

/// The last day for which a run is kept, as its result.json says; absent where it says none.
std::optional<engine::CalendarDate> keptUntil(const nlohmann::json& result);

/// Removes all but result.json and its seal.
void leaveHashesOnly(const std::filesystem::path& folder);

}  // namespace corvana::app
