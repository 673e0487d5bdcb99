#include "app/card/CalendarDay.h"

#include <ctime>

namespace corvana::app {

namespace {

engine::CalendarDate systemDate() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return {std::chrono::year(local.tm_year + 1900),
          std::chrono::month(static_cast<unsigned>(local.tm_mon + 1)),
          std::chrono::day(static_cast<unsigned>(local.tm_mday))};
}

}  // namespace

DocumentRules documentRules(const DocumentChoice& choice) {
  return {choice.date ? *choice.date : systemDate(), choice.leastAge};
}

}  // namespace corvana::app
