#include "app/recheck/RunEvents.h"

#include <algorithm>
#include <sstream>

#include "app/run/Files.h"

namespace corvana::app {
namespace {

using nlohmann::json;

constexpr std::uint64_t kMostEventsBytes = 1 << 28;

std::string textAt(const json& line, const char* key) {
  const auto entry = line.find(key);
  return entry != line.end() && entry->is_string() ? entry->get<std::string>() : "";
}

std::optional<double> numberAt(const json& line, const char* key) {
  const auto entry = line.find(key);
  if (entry == line.end() || !entry->is_number()) return std::nullopt;
  return entry->get<double>();
}

std::optional<bool> flagAt(const json& line, const char* key) {
  const auto entry = line.find(key);
  if (entry == line.end() || !entry->is_boolean()) return std::nullopt;
  return entry->get<bool>();
}

std::optional<RunEvent> eventOf(const std::string& line) {
  const auto object = parseJson(line, "");
  if (!object || !object->is_object()) return std::nullopt;
  const auto time = numberAt(*object, "t");
  RunEvent event{.t = time.value_or(0),
                 .event = textAt(*object, "event"),
                 .name = textAt(*object, "name"),
                 .text = textAt(*object, "text"),
                 .cause = textAt(*object, "cause"),
                 .value = numberAt(*object, "value"),
                 .threshold = numberAt(*object, "threshold"),
                 .passed = flagAt(*object, "passed")};
  if (!event.passed) event.passed = flagAt(*object, "seen");
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
      return platform::failure("Line " + std::to_string(number) + " of \"" + file.string() +
                               "\" is no event of a run.");
    }
    if (isRetry(*event)) {
      ++events.earlierAttempts;
      events.all.clear();
    }
    events.all.push_back(std::move(*event));
  }
  events.all.erase(events.all.begin(), std::ranges::find_if(events.all, isMode));
  if (!events.all.empty()) return events;
  return platform::failure("\"" + file.string() + "\" tells of no identification that began.");
}

}  // namespace corvana::app
