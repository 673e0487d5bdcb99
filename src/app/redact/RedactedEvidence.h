#pragma once

#include <filesystem>

#include "app/redact/Disclosures.h"
#include "engine/redaction/HeadFinder.h"
#include "platform/foundation/Fault.h"

namespace corvana::app {

struct EvidenceRedaction {
  std::filesystem::path from;  ///< folder of the run
  std::filesystem::path to;    ///< folder of its copy
  bool isSilent = false;       ///< also without the words that were read and heard
  bool coversFace = false;
};

/// Copies of a run's evidence what may be shown: the words that were read, and the live face. Of
/// the card no picture and no text is left, but for digests of its fields and its zone.
platform::Expected<void> redactEvidence(const EvidenceRedaction& wishes, engine::HeadFinder& heads,
                                        Disclosures& disclosures);

}  // namespace corvana::app
