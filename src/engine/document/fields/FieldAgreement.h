#pragma once

#include <string>
#include <vector>

#include "corvana/DetectedData.h"
#include "corvana/DocumentField.h"
#include "engine/document/fields/CalendarDates.h"

/// Whether print, zone and code of one document say the same, and what a day makes of its dates.
/// Pure.
namespace corvana::engine {

/// The print of a card: what was found beside labels, and all its sure lines.
struct Print {
  std::vector<corvana::DocumentField> fields;
  std::vector<std::string> lines;
  /// What lines may say as well, as far as their reader was unsure.
  std::vector<std::string> doubtfulLines{};
};

/// Each field of a zone or code against the print. Accents and the ways to write them out do not
/// count, nor what was cut for want of room, nor what readers take for one another in a number. A
/// field without a label agrees with any line that holds its value and conflicts with one that
/// nearly does; without either it is unread, as is print that is not clear, and a conflict that a
/// doubtful line may take back, since the reader was unsure of its letters. Authorities and
/// addresses, which are written in too many ways, never conflict.
std::vector<corvana::FieldCheck> checkPrint(const Print& print,
                                            const std::vector<corvana::DocumentField>& record);

/// The same for all sides of a card, each of whose zones and codes is set against all its print.
std::vector<corvana::FieldCheck> checkSides(const std::vector<const corvana::DetectedData*>& sides);

enum class DateFinding { expired, notYetValid, underAge };
const char* nameOf(DateFinding finding);

/// What a day makes of the dates: zone and code before print. Without an age to reach nobody is
/// too young; a birth whose day is left open counts as the last one possible.
std::vector<DateFinding> checkDates(const std::vector<corvana::DocumentField>& fields,
                                    const CalendarDate& today, int leastAge);

}  // namespace corvana::engine
