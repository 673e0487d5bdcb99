#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Where the formats of ICAO Doc 9303 keep their fields, and what may stand at each place.
namespace corvana::engine {

inline constexpr char kMrzFiller = '<';

/// Whether a line that was read is a zone's, which is no print: nothing else has fillers.
inline bool isZoneLine(std::string_view line) {
  return line.find(kMrzFiller) != std::string_view::npos;
}

/// A stretch of one line.
struct MrzSpan {
  std::size_t line;
  std::size_t start;
  std::size_t length;
};

/// One format; each of its checked fields is followed by its check digit.
struct MrzLayout {
  std::size_t lineCount;
  std::size_t lineLength;
  MrzSpan names;
  MrzSpan number;
  MrzSpan nationality;
  MrzSpan birthDate;
  MrzSpan sex;
  MrzSpan expiryDate;
  /// Where a document number of more than nine characters goes on; absent where it may not.
  std::optional<MrzSpan> longNumber;
  /// Optional data with a check digit of its own behind it.
  std::optional<MrzSpan> personalNumber;
  MrzSpan compositeDigit;
  std::vector<MrzSpan> composite;
};

inline constexpr MrzSpan kMrzDocumentCode{0, 0, 2};
inline constexpr MrzSpan kMrzIssuingState{0, 2, 3};

/// TD1 (three lines of 30), TD2 (two of 36) and TD3 (two of 44).
const std::array<MrzLayout, 3>& mrzLayouts();

enum class MrzAlphabet { letters, digits, any };

/// What the format allows at a place beside the filler: a digit is none of a name, a letter none of
/// a date. The sex counts as a letter.
MrzAlphabet mrzAlphabetAt(const MrzLayout& layout, std::size_t line, std::size_t column);

std::string_view mrzField(const std::vector<std::string>& lines, const MrzSpan& span);

}  // namespace corvana::engine
