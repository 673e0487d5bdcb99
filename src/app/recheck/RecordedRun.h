#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/recheck/RunEvents.h"
#include "app/seal/RecordCheck.h"
#include "corvana/DetectedData.h"
#include "engine/document/fields/CalendarDates.h"
#include "engine/recorder/ScreenPlaces.h"

namespace corvana::app {

/// An ended run's record, as far as its film can be judged again by it.
struct RecordedRun {
  std::filesystem::path folder;
  std::filesystem::path film;
  nlohmann::json result;
  RunEvents events;
  RecordReport report;              ///< whether the files are those that the run left
  bool isTrusted = false;           ///< a key vouches for them
  std::optional<std::string> text;  ///< that was to be read, where the record holds it

  bool hasResult() const { return result.contains("result"); }
  /// What is bound under that name ("text", "documents"), or empty.
  std::string sum(const char* name) const;
  std::optional<engine::CalendarDate> date() const;
  std::optional<engine::ScreenPlaces> places() const;
  /// The numbers from which the tasks of the last run came; empty when it had none.
  std::vector<std::uint32_t> drawn() const;
};

/// Where the screen asked for face and card, by what result.json says; absent where it does not.
std::optional<engine::ScreenPlaces> screenPlacesIn(const nlohmann::json& result);

/// Looks whether a key vouches for the record (null: none is asked), and reads it, whatever comes
/// out. The error: there is nothing to judge, in one sentence.
platform::Expected<RecordedRun> readRecordedRun(const std::filesystem::path& folder,
                                                const TrustedKeys* keys,
                                                const StampAuthorities* authorities);

}  // namespace corvana::app
