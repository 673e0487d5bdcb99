#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/keys/TrustedKeys.h"
#include "app/stamp/TimeStamp.h"

namespace corvana::app {

/// What a check found about one part of a record, mostly a file.
struct RecordFinding {
  std::string part;
  bool holds = false;
  std::string sentence;  ///< a whole one when the part does not hold
};

struct RecordReport {
  std::vector<RecordFinding> findings = {};
  nlohmann::json result = {};  ///< what result.json says; null without one that can be read
  std::optional<std::string> sealer = {};  ///< id of the trusted key that signed it, if one did
  /// Nothing is amiss.
  bool holds() const;
};

/// Looks whether a run's folder holds what the run left and nothing else, and whether one of these
/// keys vouches for it (null: nobody does, and the report says so). Time stamps count if they are
/// of one of the authorities (null: none counts). The error: the folder is no record of a run at
/// all.
platform::Expected<RecordReport> checkRecord(const std::filesystem::path& folder,
                                             const TrustedKeys* keys,
                                             const StampAuthorities* authorities = nullptr);

}  // namespace corvana::app
