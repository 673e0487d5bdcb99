#include "engine/document/mrz/MrzRepair.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "engine/document/mrz/MrzParser.h"
#include "engine/document/mrz/StateCodes.h"
#include "engine/document/text/AsciiLetters.h"
#include "platform/foundation/Fault.h"

namespace corvana::engine {
namespace {

using Lines = std::vector<std::string>;

/// Changes that a check digit alone speaks for: with two, one number in ten that was misread
/// otherwise would seem mended.
constexpr int kMostChanges = 1;
/// With more ways than these to see one zone, no change would tell them apart.
constexpr std::size_t kMostToChange = 64;
/// How many letters the longest line may lack or have too many.
constexpr std::size_t kMostMissing = 4;
constexpr std::size_t kMostSurplus = 2;
/// Shorter numbers stand in print by chance.
constexpr std::size_t kLeastPrintedNumber = 6;
/// What tells a zone's line from print: fillers, or digits in a long line where they do not show.
constexpr std::size_t kLeastLength = 22;
constexpr std::ptrdiff_t kLeastDigits = 6;
constexpr std::ptrdiff_t kMostLines = 3;

/// What a reader takes for one another, in either direction.
constexpr std::array<std::pair<char, char>, 6> kTwins{
    {{'O', '0'}, {'I', '1'}, {'Z', '2'}, {'S', '5'}, {'G', '6'}, {'B', '8'}}};

char digitFor(char c) {
  if (c == 'Q' || c == 'D' || c == 'U') return '0';
  if (c == 'L') return '1';
  for (const auto& [letter, digit] : kTwins) {
    if (c == letter) return digit;
  }
  return c;
}

char letterFor(char c) {
  for (const auto& [letter, digit] : kTwins) {
    if (c == digit) return letter;
  }
  return c;
}

char put(char c, MrzAlphabet alphabet) {
  if (alphabet == MrzAlphabet::letters) return letterFor(c);
  if (alphabet == MrzAlphabet::digits) return digitFor(c);
  return c;
}

/// With every letter that a reader takes for a digit, or a digit for it, as that digit.
std::string inDigits(std::string text) {
  std::ranges::transform(text, text.begin(), digitFor);
  return text;
}

/// Whether another number differs only where letters and digits look alike, and a check digit tells
/// each of them: G counts as 6 does, so that print must not decide which it is.
bool isToldByCheckDigits(const std::string& other, const std::string& number) {
  const auto value = [](char c) {
    return isDigit(c) ? c - '0' : c == kMrzFiller ? 0 : c - 'A' + 10;
  };
  if (other == number || inDigits(other) != inDigits(number)) return false;
  return std::ranges::equal(
      other, number, [&](char a, char b) { return a == b || (value(a) - value(b)) % 10 != 0; });
}

std::string withFillers(const std::string& line, std::size_t at, std::size_t count) {
  return line.substr(0, at) + std::string(count, kMrzFiller) + line.substr(at);
}

/// The starts and ends of a line's stretches of fillers.
std::vector<std::pair<std::size_t, std::size_t>> fillerRuns(const std::string& line) {
  std::vector<std::pair<std::size_t, std::size_t>> runs;
  for (std::size_t at = line.find(kMrzFiller); at != std::string::npos;) {
    const std::size_t end = std::min(line.find_first_not_of(kMrzFiller, at), line.size());
    runs.emplace_back(at, end);
    at = line.find(kMrzFiller, end);
  }
  return runs;
}

/// A document's code of one letter has a filler behind it that is easily overlooked.
std::vector<std::string> lengthened(const std::string& line, std::size_t missing,
                                    std::size_t namesFrom) {
  std::vector<std::string> ways{withFillers(line, line.size(), missing)};
  for (const auto& [start, end] : fillerRuns(line)) {
    if (start < namesFrom && end < line.size()) ways.push_back(withFillers(line, start, missing));
  }
  if (namesFrom > 0 && line.size() > 1 && line[1] != kMrzFiller) {
    ways.push_back(withFillers(withFillers(line, line.size(), missing - 1), 1, 1));
  }
  return ways;
}

std::vector<std::string> shortened(const std::string& line, std::size_t surplus,
                                   std::size_t namesFrom) {
  std::vector<std::string> ways;
  for (const auto& [start, end] : fillerRuns(line)) {
    const bool isOpen = start < namesFrom || end == line.size();
    if (isOpen && end - start > surplus) ways.push_back(std::string(line).erase(start, surplus));
  }
  return ways;
}

/// No check digit guards the names: where they stand, fillers are counted anew at the line's end
/// only.
std::vector<std::string> fitted(const std::string& line, std::size_t length,
                                std::size_t namesFrom) {
  if (line.empty() || line.size() > length + kMostSurplus) return {};
  if (line.size() == length) return {line};
  return line.size() < length ? lengthened(line, length - line.size(), namesFrom)
                              : shortened(line, line.size() - length, namesFrom);
}

bool isSizeOf(const MrzLayout& layout, const Lines& lines) {
  if (lines.size() != layout.lineCount) return false;
  std::size_t longest = 0;
  for (const std::string& line : lines)
    longest = std::max(longest, line.size());
  return longest + kMostMissing >= layout.lineLength && longest <= layout.lineLength + kMostSurplus;
}

/// A nought in a state's code is an O, or a D where no state has that one.
void putStateRight(const MrzSpan& span, const Lines& print, Lines& lines) {
  if (isMrzStateCode(mrzField(lines, span))) return;
  Lines changed = lines;
  for (std::size_t i = span.start; i < span.start + span.length; ++i) {
    if (print[span.line][i] == '0') changed[span.line][i] = 'D';
  }
  if (isMrzStateCode(mrzField(changed, span))) lines = std::move(changed);
}

void putRight(const MrzLayout& layout, Lines& lines) {
  const Lines print = lines;
  for (std::size_t line = 0; line < lines.size(); ++line) {
    for (std::size_t column = 0; column < layout.lineLength; ++column) {
      char& c = lines[line][column];
      c = put(c, mrzAlphabetAt(layout, line, column));
    }
  }
  putStateRight(kMrzIssuingState, print, lines);
  putStateRight(layout.nationality, print, lines);
}

/// All ways to take one of each line's choices.
std::vector<Lines> combined(const std::vector<std::vector<std::string>>& choices) {
  std::vector<Lines> all{{}};
  for (const auto& ofLine : choices) {
    std::vector<Lines> longer;
    for (const Lines& lines : all) {
      for (const std::string& choice : ofLine) {
        longer.push_back(lines);
        longer.back().push_back(choice);
      }
    }
    all = std::move(longer);
  }
  return all;
}

/// Surname and given names have two fillers between them, names of one kind one, and nothing
/// follows two fillers a second time. Several names of one kind only are a lost filler far oftener
/// than a name.
bool areNamesParted(std::string_view field) {
  const std::string_view names = field.substr(0, field.find_last_not_of(kMrzFiller) + 1);
  const auto gap = names.find("<<");
  if (gap == std::string_view::npos) return names.find(kMrzFiller) == std::string_view::npos;
  return names.find("<<", gap + 1) == std::string_view::npos;
}

bool isIssuerKnown(const MrzCandidate& zone) {
  return isMrzStateCode(mrzField(zone.lines, kMrzIssuingState));
}

bool isNationalityKnown(const MrzCandidate& zone) {
  return isMrzStateCode(mrzField(zone.lines, zone.layout->nationality));
}

std::optional<std::string> doubt(const MrzCandidate& zone) {
  if (!isIssuerKnown(zone)) return "the issuing state is not known";
  if (!isNationalityKnown(zone)) return "the nationality is not known";
  if (!areNamesParted(mrzField(zone.lines, zone.layout->names))) {
    return "the names are not clearly parted";
  }
  return std::nullopt;
}

/// The other letter or digit that may have been meant: a digit where a letter stands between two
/// digits, and O for a 0 beside a letter. Every further guess would make right check digits of
/// numbers that were misread otherwise.
std::optional<char> twinAt(const std::string& line, std::size_t column) {
  const char c = line[column];
  const char before = column > 0 ? line[column - 1] : kMrzFiller;
  const char after = column + 1 < line.size() ? line[column + 1] : kMrzFiller;
  if (c == '0' && (isCapital(before) || isCapital(after))) return 'O';
  const char digit = digitFor(c);
  if (digit != c && isDigit(before) && isDigit(after)) return digit;
  return std::nullopt;
}

/// The zones that differ from one of these in a single place left open by its format.
std::vector<MrzCandidate> changedOnce(const std::vector<MrzCandidate>& zones) {
  std::vector<MrzCandidate> changed;
  std::set<Lines> known;
  const auto change = [&](MrzCandidate zone, std::size_t line, std::size_t column) {
    if (mrzAlphabetAt(*zone.layout, line, column) != MrzAlphabet::any) return;
    const auto twin = twinAt(zone.lines[line], column);
    if (!twin) return;
    zone.lines[line][column] = *twin;
    if (known.insert(zone.lines).second) changed.push_back(std::move(zone));
  };
  for (const MrzCandidate& zone : zones) {
    for (std::size_t line = 0; line < zone.lines.size(); ++line) {
      for (std::size_t column = 0; column < zone.layout->lineLength; ++column)
        change(zone, line, column);
    }
  }
  return changed;
}

struct Outcome {
  std::map<Lines, corvana::MRZResult> accepted;
  std::string reason;
};

Outcome judged(const std::vector<MrzCandidate>& zones) {
  Outcome outcome;
  for (const MrzCandidate& zone : zones) {
    auto mrz = parseMrz(zone.lines);
    const auto reason = mrz ? doubt(zone) : std::optional(mrz.error().sentence);
    if (reason)
      outcome.reason = *reason;
    else
      outcome.accepted.emplace(zone.lines, *std::move(mrz));
  }
  return outcome;
}

}  // namespace

std::string mrzLetters(std::string_view print) {
  static const std::map<std::string_view, std::string_view> kFillers{
      {"«", "<<"}, {"‹", "<"}, {"〈", "<"}, {"＜", "<"}, {"《", "<<"}};
  std::string letters;
  for (std::size_t i = 0; i < print.size();) {
    const char c = print[i];
    if (isDigit(c) || isCapital(c) || c == kMrzFiller) {
      letters += c;
      ++i;
    } else if (c >= 'a' && c <= 'z') {
      letters += static_cast<char>(c - 'a' + 'A');
      ++i;
    } else if (c == ' ') {
      ++i;
    } else {
      const auto filler = std::ranges::find_if(
          kFillers, [&](const auto& pair) { return print.substr(i).starts_with(pair.first); });
      if (filler == kFillers.end()) return {};
      letters += filler->second;
      i += filler->first.size();
    }
  }
  return letters;
}

std::vector<std::string> mrzLinesAmong(const std::vector<std::string>& print) {
  std::vector<std::string> zone;
  for (const std::string& line : print) {
    std::string letters = mrzLetters(line);
    const bool hasFillers = letters.find(kMrzFiller) != std::string::npos;
    const bool isLong =
        letters.size() >= kLeastLength && std::ranges::count_if(letters, isDigit) >= kLeastDigits;
    if (hasFillers || isLong) zone.push_back(std::move(letters));
  }
  if (zone.size() > kMostLines) zone.erase(zone.begin(), zone.end() - kMostLines);
  return zone;
}

std::vector<MrzCandidate> mrzCandidates(const std::vector<std::string>& lines) {
  std::vector<MrzCandidate> candidates;
  for (const MrzLayout& layout : mrzLayouts()) {
    if (!isSizeOf(layout, lines)) continue;
    std::vector<std::vector<std::string>> choices;
    for (std::size_t line = 0; line < lines.size(); ++line) {
      const bool hasNames = line == layout.names.line;
      choices.push_back(fitted(lines[line], layout.lineLength,
                               hasNames ? layout.names.start : layout.lineLength));
    }
    for (Lines& way : combined(choices)) {
      putRight(layout, way);
      candidates.push_back({&layout, std::move(way)});
    }
  }
  return candidates;
}

platform::Expected<corvana::MRZResult> readMrz(const std::vector<std::string>& lines) {
  std::vector<MrzCandidate> zones = mrzCandidates(lines);
  std::string reason = "not two or three lines of a zone's length";
  for (int changes = 0; changes <= kMostChanges && !zones.empty(); ++changes) {
    const Outcome outcome = judged(zones);
    if (outcome.accepted.size() == 1) return outcome.accepted.begin()->second;
    if (outcome.accepted.size() > 1) return platform::failure("it can be read in two ways");
    if (changes == 0) reason = outcome.reason;
    if (zones.size() > kMostToChange) break;
    zones = changedOnce(zones);
  }
  return platform::failure(std::move(reason));
}

std::optional<corvana::MRZResult> readMrzByPrint(const std::vector<std::string>& lines,
                                                 const std::vector<std::string>& words) {
  std::vector<MrzCandidate> zones;
  for (const MrzCandidate& zone : mrzCandidates(lines)) {
    const MrzSpan& place = zone.layout->number;
    const std::string read(mrzField(zone.lines, place));
    for (const std::string& word : words) {
      std::string number = mrzLetters(word);
      if (number.size() < kLeastPrintedNumber || number.size() > place.length) continue;
      number.resize(place.length, kMrzFiller);
      if (!isToldByCheckDigits(number, read)) continue;
      zones.push_back(zone);
      zones.back().lines[place.line].replace(place.start, place.length, number);
    }
  }
  Outcome outcome = judged(zones);
  if (outcome.accepted.size() != 1) return std::nullopt;
  return std::move(outcome.accepted.begin()->second);
}

std::optional<corvana::MRZResult> glimpsedMrz(const std::vector<std::string>& lines) {
  for (const MrzCandidate& zone : mrzCandidates(lines)) {
    if (!isIssuerKnown(zone) || !isNationalityKnown(zone)) continue;
    corvana::MRZResult glimpsed;
    glimpsed.lines = zone.lines;
    glimpsed.documentCode = mrzField(zone.lines, kMrzDocumentCode);
    std::erase(glimpsed.documentCode, kMrzFiller);
    return glimpsed;
  }
  return std::nullopt;
}

}  // namespace corvana::engine
