#pragma once

#include <filesystem>
#include <optional>

#include <tl/expected.hpp>

#include "app/keys/SigningKey.h"
#include "app/keys/TrustedKeys.h"
#include "app/redact/FilmRedaction.h"
#include "app/run/ExitCode.h"
#include "app/run/Resources.h"
#include "app/stamp/TimeStamp.h"

namespace corvana::app {

struct RecordRedaction {
  std::filesystem::path folder;  ///< of the run
  std::filesystem::path output;  ///< of its copy; new or empty
  /// New file for the texts that were taken out, which whoever gets the copy is not to see.
  std::filesystem::path disclosures;
  bool isSilent = false;
  bool coversFace = false;
  std::optional<SigningKey> key = {};             ///< seals the copy
  const TrustedKeys* keys = nullptr;              ///< that may vouch for the run; null: none
  const StampAuthorities* authorities = nullptr;  ///< likewise for its time
};

/// Makes a copy of a run's record for people who may not see the card: docs/redact.md says what is
/// in it. The run must be one whose files hold; it stays as it is. After an error nothing of the
/// copy is left.
tl::expected<RedactedPictures, Refusal> redactRecord(const RecordRedaction& wishes,
                                                     const Resources& resources);

}  // namespace corvana::app
