#pragma once

#include <string>
#include <string_view>

/// Letters as machine-readable zones write them (ICAO Doc 9303 part 3, section 6). Pure.
namespace corvana::engine {

/// Capitals of ASCII, digits and single blanks for whatever else stands between words, with Ä as
/// AE, Ø as OE, ß as SS, Å as AA and so on; apostrophes and points fall away.
std::string zoneLetters(std::string_view text);

/// The same with every letter but without its marks: Ä as A, Ø as O.
std::string plainLetters(std::string_view text);

/// Stands for a letter with a mark.
inline constexpr char kMarkedLetter = '?';
/// The letters of plainLetters without blanks, those with a mark as `kMarkedLetter`.
std::string withoutMarkedLetters(std::string_view text);

/// The text with those of its letters with a mark that are not of these letters, one for each of
/// `withoutMarkedLetters`, as these.
std::string withMarkedLettersAs(std::string_view text, std::string_view letters);

/// What is left when neither marks nor the ways to write them out count: MÜLLER, MULLER and
/// MUELLER are one. Without blanks.
std::string letterSkeleton(std::string_view text);

}  // namespace corvana::engine
