#include "app/run/DebugFigures.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <variant>

#include "corvana/VideoCapture.h"

namespace corvana::app {
namespace {

using engine::RecorderEvent;
using Kind = RecorderEvent::Kind;

/// A figure with three digits; of a flag its name alone, with "not" where it is down.
std::string wordOf(const RecorderEvent::Detail& detail) {
  const auto& [name, value] = detail;
  if (const auto* number = std::get_if<double>(&value)) {
    std::array<char, 32> digits{};
    const auto end =
        std::to_chars(digits.begin(), digits.end(), *number, std::chars_format::general, 3).ptr;
    return name + " " + std::string(digits.begin(), end);
  }
  if (const auto* flag = std::get_if<bool>(&value)) return (*flag ? "" : "not ") + name;
  return std::get<std::string>(value);
}

std::string lineOf(const RecorderEvent& event) {
  std::string line = event.kind == Kind::liveness ? "life: " + event.name : event.name;
  for (const auto& detail : event.details)
    line += (&detail == &event.details.front() ? ": " : ", ") + wordOf(detail);
  return line;
}

}  // namespace

void DebugFigures::happened(const RecorderEvent& event) {
  if (!corvana::VideoCapture::options.isDebugMode) return;
  const bool isRetry = event.kind == Kind::call && event.name == "retry";
  const bool isFigure =
      event.kind == Kind::sign || event.kind == Kind::task || event.kind == Kind::liveness;
  if (!isRetry && !isFigure) return;
  if (isRetry) figures_.clear();
  if (isFigure) keep(event.kind == Kind::liveness ? "life" : event.name, lineOf(event));
  std::string lines;
  for (const Figure& figure : figures_)
    lines += (lines.empty() ? "" : "\n") + figure.line;
  show_(lines);
}

void DebugFigures::keep(const std::string& name, std::string line) {
  const auto known = std::ranges::find(figures_, name, &Figure::name);
  if (known == figures_.end()) {
    figures_.push_back({name, std::move(line)});
  } else {
    known->line = std::move(line);
  }
}

}  // namespace corvana::app
