#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/keys/SigningKey.h"
#include "app/stamp/UtcTime.h"
#include "engine/document/fields/CalendarDates.h"

namespace corvana::app {

/// A run whose time is over.
struct OverdueRun {
  std::filesystem::path folder;
  /// By which a receipt names it: the SHA-256 of its result.json, which tells nothing of it to
  /// those who do not have it. Of a run that never ended: that of its events.
  std::string record;
  std::optional<engine::CalendarDate> until;  ///< absent: it never ended
  bool removed = false;
};

struct PurgeRules {
  engine::CalendarDate today;
  /// Runs that never ended go when nothing was written into them for as many days; absent: never.
  std::optional<int> unendedDays;
};

struct OverdueRuns {
  std::vector<OverdueRun> runs;
  /// Those of which it can't be told until when they are kept: they stay.
  std::vector<std::filesystem::path> unclear;
};

/// The runs in a folder of runs that are over by these rules, by the names of their folders.
platform::Expected<OverdueRuns> findOverdue(const std::filesystem::path& folder,
                                            const PurgeRules& rules);

/// Removes the files of a run's record, and its folder if nothing else is in it. False: something
/// is left.
bool removeRecord(const std::filesystem::path& folder);

/// Removes the runs and leaves a receipt, signed with the key, beside them: written before, so that
/// nothing goes without one, and anew afterwards. Marks the runs that are gone. The answer is the
/// receipt's file.
platform::Expected<std::filesystem::path> purge(const std::filesystem::path& folder,
                                                std::vector<OverdueRun>& runs,
                                                const PurgeRules& rules, const SigningKey& key,
                                                UtcTime now);

}  // namespace corvana::app
