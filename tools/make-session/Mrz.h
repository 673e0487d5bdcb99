#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Script.h"

namespace corvana::session {

/// The check digit of a machine-readable zone: weights 7, 3, 1 modulo 10 over digits as they are,
/// letters as 10 to 35 and the filler as 0 (ICAO Doc 9303, part 3).
char mrzCheckDigit(std::string_view characters);

/// Capitals of English only, spelled as the standard recommends: Ü becomes UE, Ø OE, É E.
std::string plainLetters(const std::string& text);

/// The three sizes of zone (ICAO Doc 9303, parts 4 to 6): cards of ID-1 have three lines of 30
/// characters, those of ID-2 two of 36, and pages of passports two of 44.
enum class MrzFormat { td1, td2, td3 };

/// The card's lines. In TD1 a document number longer than nine characters goes on in the optional
/// data, as the standard says; the others print its first nine.
std::vector<std::string> mrzLines(const CardData& card, MrzFormat format = MrzFormat::td1);

}  // namespace corvana::session
