#pragma once

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/card/CalendarDay.h"
#include "corvana/DetectedData.h"
#include "engine/document/fields/FieldAgreement.h"

namespace corvana::app {

/// The hint that a side looks like a copy.
inline constexpr const char* kSuspectCopy = "suspectCopy";

/// Something about a document that a reviewer should know: never a value.
struct DocumentHint {
  std::string
      name;  ///< "conflict", or a finding about its dates such as "expired", or `kSuspectCopy`
  /// Of a conflict: the field of the print, and what it was set against.
  std::optional<corvana::FieldCheck> check;
};

/// Not of the card: while the text was read a voice was heard and the lips rested.
inline constexpr const char* kVoiceWithoutLips = "voiceWithoutLips";

/// What is to be said of a card by its sides that were read and their `engine::checkSides`,
/// conflicts first.
std::vector<DocumentHint> hintsOf(const std::vector<const corvana::DetectedData*>& sides,
                                  const std::vector<corvana::FieldCheck>& checks,
                                  const DocumentRules& rules);

/// {"name": "conflict", "field": "surname", "source": "zone"}, {"name": "expired"}
nlohmann::ordered_json hintsToJson(const std::vector<DocumentHint>& hints);

/// The hint in words, as the beginning or the whole of a sentence: "the birthDate in print
/// conflicts with the zone".
std::string describe(const DocumentHint& hint, const DocumentRules& rules);

}  // namespace corvana::app
