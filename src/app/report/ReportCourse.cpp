#include "app/report/ReportCourse.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "app/report/RunFolder.h"

namespace corvana::app {
namespace {

using nlohmann::json;

/// Marks that are nearer to each other, in shares of the film, would cover each other.
constexpr double kMarkWidth = 0.03;
constexpr std::size_t kLanes = 3;
/// What lies within it is shown as one moment.
constexpr double kSameMoment = 0.05;
constexpr double kLongest = 1e6;  ///< seconds; what is longer is no time

bool is(const json& event, const char* kind) {
  return textIn(event, "event") == kind;
}

bool is(const json& event, const char* kind, const char* name) {
  return is(event, kind) && textIn(event, "name") == name;
}

double timeOf(const json& event) {
  return std::clamp(numberIn(event, "t").value_or(0), 0.0, kLongest);
}

struct Mark {
  std::string label;
  const char* tone;
};

constexpr const char* kGood = "good";
constexpr const char* kBad = "bad";
constexpr const char* kWarn = "warn";

std::optional<Mark> markOf(const json& event, const ReportWords& words) {
  const std::string name = textIn(event, "name").value_or("");
  if (is(event, "decision")) {
    const bool passed = flagIn(event, "passed").value_or(false);
    return Mark{words.name("decision", name) + ": " + words.of(passed ? "passed" : "failed"),
                passed ? kGood : kBad};
  }
  if (is(event, "liveness") && name == "living") return Mark{words.of("living"), kGood};
  if (is(event, "liveness") && name == "spoof") return Mark{words.of("spoof"), kBad};
  if (is(event, "liveFace") && name == "lost") return Mark{words.of("faceLost"), kBad};
  if (is(event, "hint") && name != "none") {
    return Mark{words.of("hint", {{"name", words.name("hint", name)}}), kWarn};
  }
  if (is(event, "warning")) {
    return Mark{words.of("warning") + ": " + textIn(event, "text").value_or(""), kWarn};
  }
  return std::nullopt;
}

const char* signOf(const std::string& tone) {
  if (tone == kGood) return "✓";
  return tone == kBad ? "✗" : "!";
}

/// A comparison that goes on and on is worth a mark where its outcome turns, and at its end.
class RepeatedDecisions {
 public:
  explicit RepeatedDecisions(const RunCourse& course) : course_(course) {}

  bool isWorthAMark(const json& event) {
    const std::string name = textIn(event, "name").value_or("");
    const auto passed = flagIn(event, "passed");
    const auto before = last_.find(name);
    const bool turned = before == last_.end() || before->second != passed;
    last_[name] = passed;
    return turned || course_.last("decision", name) == &event;
  }

 private:
  const RunCourse& course_;
  std::map<std::string, std::optional<bool>> last_;
};

void addMark(json& marks, const Mark& mark, double t) {
  if (!marks.empty()) {
    json& before = marks.back();
    if (t - before["seconds"].get<double>() < kSameMoment) {
      before["label"] = before["label"].get<std::string>() + "; " + mark.label;
      if (before["tone"] == kGood) before["tone"] = mark.tone;
      before["sign"] = signOf(before["tone"]);
      return;
    }
  }
  marks.push_back({{"seconds", t},
                   {"t", plainNumber(t)},
                   {"time", clockTime(t)},
                   {"label", mark.label},
                   {"tone", mark.tone},
                   {"sign", signOf(mark.tone)}});
}

/// Each mark in the first lane that has room for it.
void chooseLanes(json& marks, double filmSeconds) {
  std::array<double, kLanes> ends{};
  ends.fill(-kLongest);
  for (json& mark : marks) {
    const double t = mark["seconds"];
    auto lane =
        std::ranges::find_if(ends, [&](double end) { return t - end >= kMarkWidth * filmSeconds; });
    if (lane == ends.end()) lane = std::ranges::min_element(ends);
    *lane = t;
    mark["lane"] = std::to_string(lane - ends.begin());
  }
}

}  // namespace

std::string clockTime(double seconds) {
  const long tenths = std::lround(seconds * 10);
  char text[32];
  std::snprintf(text, sizeof text, "%ld:%02ld.%ld", tenths / 600, tenths / 10 % 60, tenths % 10);
  return text;
}

std::string plainNumber(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.4g", value);
  return text;
}

RunCourse::RunCourse(const std::vector<json>& events, double filmSeconds)
    : filmSeconds_(std::clamp(filmSeconds, 0.0, kLongest)) {
  const auto retry = std::find_if(events.rbegin(), events.rend(),
                                  [](const json& event) { return is(event, "call", "retry"); });
  events_.assign(retry.base(), events.end());
  // The recorder opens a film with this mode, and its first picture comes at once.
  const auto begin = std::ranges::find_if(
      events_, [](const json& event) { return is(event, "mode", "selfieCapture"); });
  if (begin != events_.end()) origin_ = timeOf(*begin);
}

const json* RunCourse::last(const char* event, const std::string& name) const {
  const auto found = std::find_if(events_.rbegin(), events_.rend(), [&](const json& candidate) {
    return is(candidate, event, name.c_str());
  });
  return found == events_.rend() ? nullptr : &*found;
}

double RunCourse::inFilm(const json& event) const {
  return std::max(0.0, timeOf(event) - origin_);
}

json RunCourse::phases(const ReportWords& words) const {
  json phases = json::array();
  for (const json& event : events_) {
    if (!is(event, "mode")) continue;
    const std::string start = plainNumber(inFilm(event));
    if (!phases.empty()) phases.back()["end"] = start;
    phases.push_back({{"name", words.name("phase", textIn(event, "name").value_or(""))},
                      {"start", start},
                      {"end", plainNumber(filmSeconds_)}});
  }
  return phases;
}

json RunCourse::marks(const ReportWords& words) const {
  json marks = json::array();
  RepeatedDecisions decisions(*this);
  for (const json& event : events_) {
    if (is(event, "decision") && !decisions.isWorthAMark(event)) continue;
    if (const auto mark = markOf(event, words)) addMark(marks, *mark, inFilm(event));
  }
  chooseLanes(marks, filmSeconds_);
  return marks;
}

}  // namespace corvana::app
