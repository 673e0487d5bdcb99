#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "corvana/DetectedData.h"
#include "platform/foundation/Fault.h"

/// Machine-readable zones of ICAO Doc 9303: TD1 (three lines of 30), TD2 (two of 36) and TD3 (two
/// of 44). Pure.
namespace corvana::engine {

/// The check digit of a field: weights 7, 3, 1; digits count as themselves, letters A to Z as 10 to
/// 35, the filler as 0.
int mrzCheckDigit(std::string_view field);

/// Reads the lines, with every check digit, date and character verified. The error is a reason in a
/// few words ("the check digit of the expiry date is wrong"), not yet a sentence for the user.
platform::Expected<corvana::MRZResult> parseMrz(const std::vector<std::string>& lines);

/// Reads the lines of one text, as above, with any line ends; blanks at a line's end and empty
/// lines do not count.
platform::Expected<corvana::MRZResult> parseMrz(std::string_view text);

}  // namespace corvana::engine
