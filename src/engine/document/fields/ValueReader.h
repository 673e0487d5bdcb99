#pragma once

#include <optional>
#include <string>
#include <vector>

#include "corvana/DocumentField.h"
#include "engine/document/fields/CalendarDates.h"

namespace corvana::engine {

/// What stands between the blanks of a text. Pure.
std::vector<std::string> wordsBetweenBlanks(const std::string& text);

/// The words of a text, in plain letters. Pure.
std::vector<std::string> plainWords(const std::string& text);

/// The value that a text in print holds for a field. Pure.
class ValueReader {
 public:
  ValueReader(const CalendarDate& today, bool isMonthFirst)
      : today_(today), isMonthFirst_(isMonthFirst) {}

  /// Absent where the text cannot be such a field's: a birth date without a date.
  std::optional<std::string> operator()(corvana::FieldName name, const std::string& text) const;

 private:
  std::optional<std::string> dateIn(const std::string& text, bool isBirth) const;

  CalendarDate today_;
  bool isMonthFirst_;
};

}  // namespace corvana::engine
