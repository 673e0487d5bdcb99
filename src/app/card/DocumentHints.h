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

/// The hint that print may say another thing than zone or code: the reader was not sure of it.
inline constexpr const char* kDoubtful = "doubtful";
/// The hint that a value of zone or code was looked for in print and not found.
inline constexpr const char* kUnread = "unread";
/// The hint that the front has no title that was read: of what kind the card is its back told.
inline constexpr const char* kUntitled = "untitled";

/// Something about a document that a reviewer should know: never a value.
struct DocumentHint {
  /// "conflict", a finding about its dates such as "expired", or one of the names above
  std::string name;
  /// Of what is said of a field: that in print, and what it was set against.
  std::optional<corvana::FieldCheck> check;
};

/// Not of the card: while the text was read a voice was heard and the lips rested.
inline constexpr const char* kVoiceWithoutLips = "voiceWithoutLips";

/// What is to be said of a card by its sides that were read and their `engine::checkSides`,
/// conflicts first.
std::vector<DocumentHint> hintsOf(const std::vector<const corvana::DetectedData*>& sides,
                                  const std::vector<corvana::FieldCheck>& checks,
                                  const DocumentRules& rules);

/// What an enrolment adds to these: a value that was printed otherwise under a label that is not
/// known looks like one that could not be read.
std::vector<DocumentHint> unreadHintsOf(const std::vector<corvana::FieldCheck>& checks);

/// {"name": "conflict", "field": "surname", "source": "zone"}, {"name": "expired"}
nlohmann::ordered_json hintsToJson(const std::vector<DocumentHint>& hints);
/// Whether one of these hints, as `hintsToJson` gives them, has the name; null has none.
bool hasHint(const nlohmann::ordered_json& hints, const std::string& name);

/// The hint in words, as the beginning or the whole of a sentence: "the birthDate in print
/// conflicts with the zone".
std::string describe(const DocumentHint& hint, const DocumentRules& rules);

}  // namespace corvana::app
