#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/record/JsonMembers.h"
#include "app/seal/RecordCheck.h"

namespace corvana::app {

/// What lies in a run's folder, as far as it can be read, and what a check of it found. All JSON is
/// as strange as whoever wrote it liked; `textIn` and the like ask it safely.
struct RunFolder {
  std::filesystem::path folder;
  RecordReport check;
  nlohmann::json result = nlohmann::json::object();
  bool hasResult = false;
  std::vector<nlohmann::json> events;  ///< objects all
  std::size_t brokenEvents = 0;        ///< lines that could not be read
  nlohmann::json evidence = nlohmann::json::object();
  bool hasEvidence = false;
  std::map<std::string, std::string> pictures;  ///< JPEG bytes of the evidence, by name
  std::vector<std::string> altered;  ///< files of the evidence that are not those the run left
  std::optional<std::string> film;   ///< name of its file

  /// Refuses a folder that is no record of a run at all.
  static platform::Expected<RunFolder> read(const std::filesystem::path& folder,
                                            const TrustedKeys* keys,
                                            const StampAuthorities* authorities);
};

}  // namespace corvana::app
