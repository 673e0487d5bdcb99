#pragma once

#include <array>
#include <string>
#include <string_view>

#include "Script.h"

namespace corvana::session {

/// The check digit of a machine-readable zone: weights 7, 3, 1 modulo 10 over digits as they are,
/// letters as 10 to 35 and the filler as 0 (ICAO Doc 9303, part 3).
char mrzCheckDigit(std::string_view characters);

/// The three lines of 30 characters on the back of an ID-1 card (ICAO Doc 9303, part 5). A document
/// number longer than nine characters goes on in the optional data, as the standard says.
std::array<std::string, 3> mrzLines(const CardData& card);

}  // namespace corvana::session
