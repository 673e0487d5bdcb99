#include "app/recheck/RunEvents.h"

#include <algorithm>
#include <sstream>

#include "app/record/Files.h"
#include "app/record/JsonMembers.h"

namespace corvana::app {
namespace {

constexpr std::uint64_t kMostEventsBytes = 1 << 28;

std::optional<RunEvent> eventOf(const std::string& line) {
  const auto object = parseJson(line, "");
  if (!object || !object->is_object()) return std::nullopt;
  const auto time = numberIn(*object, "t");
  RunEvent event{.t = time.value_or(0),
                 .event = textIn(*object, "event").value_or(""),
                 .name = textIn(*object, "name").value_or(""),
                 .text = textIn(*object, "text").value_or(""),
                 .cause = textIn(*object, "cause").value_or(""),
                 .value = numberIn(*object, "value"),
                 .threshold = numberIn(*object, "threshold"),
                 .passed = flagIn(*object, "passed")};
  if (!event.passed) event.passed = flagIn(*object, "seen");
  if (!time || event.event.empty()) return std::nullopt;
  return event;
}

bool isRetry(const RunEvent& event) {
  return event.event == "call" && event.name == "retry";
}

bool isMode(const RunEvent& event) {
  return event.event == "mode";
}

}  // namespace

platform::Expected<RunEvents> readRunEvents(const std::filesystem::path& file) {
  const auto text = readFile(file, kMostEventsBytes);
  if (!text) return tl::unexpected(text.error());
  RunEvents events;
  std::istringstream lines(*text);
  int number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    auto event = eventOf(line);
    if (!event) {
      return platform::failure("Line " + std::to_string(number) + " of " + inQuotes(file) +
                               " is no event of a run.");
    }
    if (isRetry(*event)) {
      ++events.earlierAttempts;
      events.all.clear();
    }
    events.all.push_back(std::move(*event));
  }
  events.all.erase(events.all.begin(), std::ranges::find_if(events.all, isMode));
  if (!events.all.empty()) return events;
  return platform::failure(inQuotes(file) + " tells of no identification that began.");
}

}  // namespace corvana::app
