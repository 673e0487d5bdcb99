#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <tl/expected.hpp>

#include "app/recheck/Comparison.h"
#include "app/recheck/RecheckSources.h"
#include "app/run/ExitCode.h"

namespace corvana::app {

/// What came of judging a run's film again.
struct RecheckReport {
  std::filesystem::path folder;
  bool isTrusted = false;  ///< a key vouches for the record's events
  double filmSeconds = 0;
  std::string recordedEnding;  ///< empty: nothing that a film can show ended the run
  std::string recheckedEnding;
  std::vector<ComparedJudgement> judgements;
  std::vector<std::string> contradictions;  ///< whatever else does not agree, in sentences
  std::vector<std::string> notes;           ///< what a reader should know beside
  std::vector<std::string> notRechecked;    ///< what a film cannot show

  bool agrees() const;
};

/// Lets the film of a run through the same flow, in media time, and sets what is found against the
/// record. Sets the host's options. Blocks.
tl::expected<RecheckReport, Refusal> recheck(const RecordedRun& run, const RecheckSources& sources);

}  // namespace corvana::app
