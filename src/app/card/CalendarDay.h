#pragma once

#include <filesystem>
#include <optional>

#include "engine/document/fields/CalendarDates.h"

namespace corvana::app {

/// By what documents are judged beside their print.
struct DocumentRules {
  engine::CalendarDate today{};
  int leastAge = 0;  ///< 0: any age will do
};

/// The rules as they were asked for.
struct DocumentChoice {
  std::optional<engine::CalendarDate> date;  ///< absent: what day it is where the machine stands
  int leastAge = 0;
  /// Kinds of documents and labels beside those that come with the program.
  std::optional<std::filesystem::path> folder;
};

/// Asks the system for the day where none was given: once a run, and nothing is timed with it.
DocumentRules documentRules(const DocumentChoice& choice);

}  // namespace corvana::app
