#include "engine/document/fields/CalendarDates.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <regex>

#include "engine/document/text/AsciiLetters.h"

namespace corvana::engine {
namespace {

constexpr int kCentury = 100;
constexpr int kFirstYear = 1900;
constexpr int kLastYear = 2199;

std::optional<int> number(std::string_view digits) {
  if (digits.empty() || digits.size() > 4 || !std::ranges::all_of(digits, isDigit)) {
    return std::nullopt;
  }
  int value = 0;
  for (const char c : digits)
    value = 10 * value + (c - '0');
  return value;
}

std::optional<CalendarDate> dateOf(std::optional<int> year, std::optional<int> month,
                                   std::optional<int> day) {
  if (!year || !month || !day || *year < kFirstYear || *year > kLastYear) return std::nullopt;
  const CalendarDate date{std::chrono::year(*year), std::chrono::month(unsigned(*month)),
                          std::chrono::day(unsigned(*day))};
  if (!date.ok()) return std::nullopt;
  return date;
}

std::optional<std::string> iso(const std::optional<CalendarDate>& date) {
  if (!date) return std::nullopt;
  return isoDate(*date);
}

/// The hundred years that end with today's.
int birthYear(int twoDigits, const CalendarDate& today) {
  const int thisYear = int(today.year());
  const int year = thisYear - thisYear % kCentury + twoDigits;
  return year > thisYear ? year - kCentury : year;
}

int nearestYear(int twoDigits, const CalendarDate& today) {
  const int thisYear = int(today.year());
  const int year = thisYear - thisYear % kCentury + twoDigits;
  if (year > thisYear + kCentury / 2) return year - kCentury;
  return year < thisYear - kCentury / 2 ? year + kCentury : year;
}

/// The first letters of the months in the languages of cards, capitals without accents, as long as
/// needed to tell them apart.
const std::map<std::string_view, int>& monthWords() {
  static const std::map<std::string_view, int> kMonths{
      {"JAN", 1},  {"ENE", 1},  {"GEN", 1},  {"STY", 1},  {"GENN", 1},  {"FEB", 2},  {"FEV", 2},
      {"LUT", 2},  {"FEBB", 2}, {"MAR", 3},  {"MRZ", 3},  {"MAERZ", 3}, {"MRT", 3},  {"MAA", 3},
      {"MARS", 3}, {"APR", 4},  {"AVR", 4},  {"ABR", 4},  {"KWI", 4},   {"MAY", 5},  {"MAI", 5},
      {"MAG", 5},  {"MEI", 5},  {"MAJ", 5},  {"JUN", 6},  {"JUIN", 6},  {"GIU", 6},  {"CZE", 6},
      {"JUL", 7},  {"JUIL", 7}, {"LUG", 7},  {"LIP", 7},  {"AUG", 8},   {"AOU", 8},  {"AGO", 8},
      {"SIE", 8},  {"SEP", 9},  {"SET", 9},  {"WRZ", 9},  {"OCT", 10},  {"OKT", 10}, {"OTT", 10},
      {"OUT", 10}, {"PAZ", 10}, {"NOV", 11}, {"LIS", 11}, {"DEC", 12},  {"DEZ", 12}, {"DIC", 12},
      {"DES", 12}, {"GRU", 12}};
  return kMonths;
}

/// The longest beginning of a word that is a month's.
std::optional<int> monthOf(std::string_view word) {
  for (std::size_t length = std::min<std::size_t>(word.size(), 5); length >= 3; --length) {
    const auto month = monthWords().find(word.substr(0, length));
    if (month != monthWords().end()) return month->second;
  }
  return std::nullopt;
}

/// A number of a date, or its month in a word.
struct Piece {
  std::string digits;
  std::optional<int> month;
  std::size_t start = 0;
  std::size_t end = 0;
};

/// In print of letters as wide as one another, OCT is read as 0CT.
void mendLetters(std::string& text) {
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    const bool beginsWord = i == 0 || !(isDigit(text[i - 1]) || isCapital(text[i - 1]));
    if (text[i] == '0' && beginsWord && isCapital(text[i + 1])) text[i] = 'O';
  }
}

/// Capitals of ASCII, small ones too; Û and É and their like for what they are in a month's name.
std::string capitals(std::string_view text) {
  static const std::map<std::string_view, char> kAccented{{"Û", 'U'}, {"û", 'U'}, {"É", 'E'},
                                                          {"é", 'E'}, {"Ź", 'Z'}, {"ź", 'Z'},
                                                          {"Ä", 'A'}, {"ä", 'A'}};
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto accented = kAccented.find(text.substr(i, 2));
    if (accented != kAccented.end()) {
      plain += accented->second;
      ++i;
    } else {
      const char c = text[i];
      plain += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
  }
  mendLetters(plain);
  return plain;
}

std::vector<Piece> piecesOf(const std::string& text) {
  std::vector<Piece> pieces;
  const auto runFrom = [&](std::size_t at, auto isOf) {
    std::size_t end = at;
    while (end < text.size() && isOf(text[end]))
      ++end;
    return end;
  };
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at + 1;
    if (isDigit(text[at])) {
      end = runFrom(at, isDigit);
      pieces.push_back({text.substr(at, end - at), std::nullopt, at, end});
    } else if (isCapital(text[at])) {
      end = runFrom(at, isCapital);
      const auto month = monthOf(std::string_view(text).substr(at, end - at));
      // A month in two languages is one month.
      if (month && !pieces.empty() && pieces.back().month == month)
        pieces.back().end = end;
      else if (month)
        pieces.push_back({"", month, at, end});
    }
    at = end;
  }
  return pieces;
}

/// Between the numbers of a date stand few signs, and none but these.
bool isParted(const std::string& text, const Piece& before, const Piece& after) {
  const std::string_view between =
      std::string_view(text).substr(before.end, after.start - before.end);
  return between.size() <= 3 && between.find_first_not_of(" .,/-") == std::string_view::npos;
}

std::optional<int> yearOf(const Piece& piece, const CalendarDate& today, bool isBirth) {
  const auto value = number(piece.digits);
  if (!value || (piece.digits.size() != 4 && piece.digits.size() != 2)) return std::nullopt;
  if (piece.digits.size() == 4) return value;
  return isBirth ? birthYear(*value, today) : nearestYear(*value, today);
}

std::optional<int> shortNumber(const Piece& piece) {
  return piece.digits.size() <= 2 ? number(piece.digits) : std::nullopt;
}

std::optional<CalendarDate> dateFrom(const Piece& a, const Piece& b, const Piece& c,
                                     const CalendarDate& today, const PrintedDateRules& rules) {
  if (a.digits.size() == 4) {
    return dateOf(number(a.digits), b.month ? b.month : shortNumber(b), shortNumber(c));
  }
  const auto year = yearOf(c, today, rules.isBirth);
  if (b.month) return dateOf(year, b.month, shortNumber(a));
  if (a.month) return dateOf(year, a.month, shortNumber(b));
  const auto usual = dateOf(year, shortNumber(b), shortNumber(a));
  const auto monthFirst = dateOf(year, shortNumber(a), shortNumber(b));
  if (rules.isMonthFirst) return monthFirst ? monthFirst : usual;
  return usual ? usual : monthFirst;
}

}  // namespace

std::string isoDate(const CalendarDate& date) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", int(date.year()),
                unsigned(date.month()), unsigned(date.day()));
  return text.data();
}

std::optional<CalendarDate> calendarDate(std::string_view iso) {
  if (iso.size() != 10 || iso[4] != '-' || iso[7] != '-') return std::nullopt;
  return dateOf(number(iso.substr(0, 4)), number(iso.substr(5, 2)), number(iso.substr(8, 2)));
}

std::optional<std::string> isoFromEightDigits(std::string_view text) {
  std::string digits;
  std::ranges::copy_if(text, std::back_inserter(digits), isDigit);
  if (digits.size() != 8) return std::nullopt;
  const std::string_view d = digits;
  const auto yearLast = dateOf(number(d.substr(4)), number(d.substr(0, 2)), number(d.substr(2, 2)));
  if (yearLast) return isoDate(*yearLast);
  return iso(dateOf(number(d.substr(0, 4)), number(d.substr(4, 2)), number(d.substr(6, 2))));
}

std::optional<std::string> isoBirthDate(std::string_view yymmdd, const CalendarDate& today) {
  if (yymmdd.size() != 6) return std::nullopt;
  const auto twoDigits = number(yymmdd.substr(0, 2));
  if (!twoDigits) return std::nullopt;
  const int year = birthYear(*twoDigits, today);
  const auto month = number(yymmdd.substr(2, 2));
  if (!month) return std::to_string(year);
  const auto day = number(yymmdd.substr(4));
  auto date = dateOf(year, month, day.value_or(1));
  if (date && *date > today) date = dateOf(year - kCentury, month, day.value_or(1));
  if (!date) return std::nullopt;
  return isoDate(*date).substr(0, day ? 10 : 7);
}

std::optional<std::string> isoExpiryDate(std::string_view yymmdd, const CalendarDate& today) {
  if (yymmdd.size() != 6) return std::nullopt;
  const auto twoDigits = number(yymmdd.substr(0, 2));
  if (!twoDigits) return std::nullopt;
  return iso(dateOf(nearestYear(*twoDigits, today), number(yymmdd.substr(2, 2)),
                    number(yymmdd.substr(4))));
}

std::vector<std::string> datesInPrint(std::string_view text, const CalendarDate& today,
                                      const PrintedDateRules& rules) {
  const std::string plain = capitals(text);
  const std::vector<Piece> pieces = piecesOf(plain);
  std::vector<std::string> dates;
  for (std::size_t i = 0; i + 2 < pieces.size(); ++i) {
    const Piece& a = pieces[i];
    const Piece& b = pieces[i + 1];
    const Piece& c = pieces[i + 2];
    if (!isParted(plain, a, b) || !isParted(plain, b, c)) continue;
    const auto date = dateFrom(a, b, c, today, rules);
    if (!date) continue;
    dates.push_back(isoDate(*date));
    i += 2;
  }
  return dates;
}

std::string withDateBlanks(const std::string& text) {
  static const std::regex kTight(
      "(^|[^0-9A-Za-z./,-])([0-9]{2}) ?([0-9]{2}) ?([0-9]{4})($|[^0-9A-Za-z./,-])");
  return std::regex_replace(text, kTight, "$1$2 $3 $4$5");
}

std::vector<std::string> datesEitherWay(std::string_view text, const CalendarDate& around) {
  std::vector<std::string> dates = datesInPrint(text, around, {});
  const auto monthFirst = datesInPrint(text, around, {.isBirth = false, .isMonthFirst = true});
  dates.insert(dates.end(), monthFirst.begin(), monthFirst.end());
  return dates;
}

}  // namespace corvana::engine
