#include "app/stamp/UtcTime.h"

#include <cstdio>

namespace corvana::app {
namespace {

constexpr std::string_view kForm = "dddd-dd-ddTdd:dd:ddZ";

bool hasForm(std::string_view text) {
  if (text.size() != kForm.size()) return false;
  for (std::size_t i = 0; i < kForm.size(); ++i) {
    const bool isDigit = text[i] >= '0' && text[i] <= '9';
    if (kForm[i] == 'd' ? !isDigit : text[i] != kForm[i]) return false;
  }
  return true;
}

int number(std::string_view digits) {
  int value = 0;
  for (const char digit : digits)
    value = value * 10 + (digit - '0');
  return value;
}

}  // namespace

std::string formatUtc(UtcTime time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text;
}

std::optional<UtcTime> parseUtc(std::string_view text) {
  if (!hasForm(text)) return std::nullopt;
  const std::chrono::year_month_day date{
      std::chrono::year(number(text.substr(0, 4))),
      std::chrono::month(static_cast<unsigned>(number(text.substr(5, 2)))),
      std::chrono::day(static_cast<unsigned>(number(text.substr(8, 2))))};
  const int hours = number(text.substr(11, 2));
  const int minutes = number(text.substr(14, 2));
  const int seconds = number(text.substr(17, 2));
  if (!date.ok() || hours > 23 || minutes > 59 || seconds > 59) return std::nullopt;
  return std::chrono::sys_days(date) + std::chrono::hours(hours) + std::chrono::minutes(minutes) +
         std::chrono::seconds(seconds);
}

}  // namespace corvana::app
