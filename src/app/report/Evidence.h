#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/card/Reference.h"
#include "capture/TextMatching.h"
#include "corvana/DetectedData.h"
#include "corvana/Selfie.h"
#include "platform/foundation/Fault.h"

namespace corvana::app {

/// What a reviewer has to see beside events and film to judge a run: what was compared, in words
/// and pictures. It tells who the person is, so it stays in files of its own.
struct Evidence {
  std::string text;                         ///< that was to be read aloud
  std::vector<std::string> heard;           ///< the best guess at what was said
  std::vector<capture::MatchRange> spoken;  ///< stretches of the text that were heard
  Reference reference;
  // As they were when they were judged last.
  std::optional<corvana::Selfie> selfie;
  std::optional<corvana::DetectedData> front;
  std::optional<corvana::DetectedData> back;
};

inline constexpr const char* kEvidenceFileName = "evidence.json";
/// The face of the selfie: of all its pictures the only one that shows no card.
inline constexpr const char* kSelfieFaceFileName = "evidence-selfie-face.jpg";

/// The names of all files that a run's evidence may have.
std::vector<std::string> evidenceFileNames();

/// Writes evidence.json, whose shape is docs/evidence.schema.json, and its pictures, for their
/// owner only.
platform::Expected<void> writeEvidence(const Evidence& evidence,
                                       const std::filesystem::path& folder);

}  // namespace corvana::app
