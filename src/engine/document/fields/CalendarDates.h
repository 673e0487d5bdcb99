#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Dates as documents write them, read into YYYY-MM-DD. Pure: what day it is, is handed in.
namespace corvana::engine {

using CalendarDate = std::chrono::year_month_day;

/// "YYYY-MM-DD"; absent for days that no calendar has.
std::optional<CalendarDate> calendarDate(std::string_view iso);
std::string isoDate(const CalendarDate& date);

/// Eight digits, as MMDDCCYY or CCYYMMDD: years begin with 19, 20 or 21, months do not, so that
/// one of the two fits at most. Other characters between the digits do not count.
std::optional<std::string> isoFromEightDigits(std::string_view digits);

/// YYMMDD of a zone. A birth lies within the hundred years before today, its unknown day or month
/// falls away; an unknown year makes the date absent.
std::optional<std::string> isoBirthDate(std::string_view yymmdd, const CalendarDate& today);
/// YYMMDD of a zone: the year next to today's.
std::optional<std::string> isoExpiryDate(std::string_view yymmdd, const CalendarDate& today);

struct PrintedDateRules {
  /// Two-digit years are those of a birth, else the next to today's.
  bool isBirth = false;
  /// How the country writes dates where day and month could be exchanged.
  bool isMonthFirst = false;
};

/// The dates in a line of print: day, month and year in this order or turned about, parted by
/// points, blanks, strokes or dashes; months in digits or as a word of the languages of cards
/// ("12 AUG/AOÛT 1984").
std::vector<std::string> datesInPrint(std::string_view text, const CalendarDate& today,
                                      const PrintedDateRules& rules);

/// The text with the blanks of a date put back that a reader lost ("28 122028", "07121986"): eight
/// digits that stand by themselves, parted nowhere but where numbers of day, month and year meet.
/// For values of which it is known that they are dates.
std::string withDateBlanks(const std::string& text);

/// Dates in print, each read either way where day and month could be exchanged, of years next to a
/// day's.
std::vector<std::string> datesEitherWay(std::string_view text, const CalendarDate& around);

}  // namespace corvana::engine
