#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvana/DetectedData.h"
#include "engine/document/mrz/MrzLayout.h"
#include "platform/foundation/Fault.h"

/// Zones as a reader of print gives them: O for 0, fillers miscounted, blanks between. Pure.
namespace corvana::engine {

/// One line in the letters of a zone: small letters as capitals, what stands for a filler as one,
/// without blanks; empty when it holds anything else.
std::string mrzLetters(std::string_view print);

/// The lines of print that look like a zone's, in the order given, in the zone's letters; of more
/// than three the last three, for a zone stands at the bottom.
std::vector<std::string> mrzLinesAmong(const std::vector<std::string>& print);

/// Ways to see the lines as a zone of one format: of the right lengths, by adding or leaving out
/// fillers where a reader miscounts them, and with letters and digits put right where a field has
/// only one of the two. Each comes with its format; there may be none.
struct MrzCandidate {
  const MrzLayout* layout;
  std::vector<std::string> lines;
};
std::vector<MrzCandidate> mrzCandidates(const std::vector<std::string>& lines);

/// Reads a zone from two or three lines in the letters of a zone. What the format leaves open
/// (letters in a document number) is mended only if all check digits then hold and no other way
/// with as few changes makes them hold. States must be known ones, and names parted as they are in
/// a zone. The error is a reason in a few words.
platform::Expected<corvana::MRZResult> readMrz(const std::vector<std::string>& lines);

/// Reads a zone in whose document number letters were taken for digits, or digits for letters (Z
/// for 2, in letters of one width), by the number as it stands in print elsewhere on the card: the
/// words are of that print. All check digits must hold, and one number only may make them hold.
std::optional<corvana::MRZResult> readMrzByPrint(const std::vector<std::string>& lines,
                                                 const std::vector<std::string>& words);

/// What lines that can't be read as a zone show of one: those of a format's lengths, with known
/// states in both their places. Only lines and document code are filled, and either may be misread.
std::optional<corvana::MRZResult> glimpsedMrz(const std::vector<std::string>& lines);

}  // namespace corvana::engine
