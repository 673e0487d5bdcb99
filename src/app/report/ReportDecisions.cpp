#include "app/report/ReportDecisions.h"

#include <algorithm>
#include <cmath>

#include "app/report/PageHash.h"

namespace corvana::app {
namespace {

using nlohmann::json;

std::vector<std::string> namesIn(const RunCourse& course) {
  std::vector<std::string> names;
  for (const json& event : course.events()) {
    if (textIn(event, "event") != "decision") continue;
    const auto name = textIn(event, "name");
    if (name && std::ranges::find(names, *name) == names.end()) names.push_back(*name);
  }
  return names;
}

/// Of words as many as possible are to be heard; of all else that is compared, the less differs
/// the better.
bool moreIsBetter(const std::string& decision) {
  return decision == "spokenWords";
}

/// The figures, and the same drawn on a scale of 100.
json figuresOf(double value, double threshold, bool more, const ReportWords& words) {
  const double whole = more ? std::max({1.0, value, threshold}) : std::max(2 * threshold, 1e-9);
  const double limitAt = std::clamp(100 * threshold / whole, 0.0, 100.0);
  const double valueAt = std::clamp(100 * value / whole, 0.0, 98.6);
  const double margin = more ? value - threshold : threshold - value;
  return {{"value", plainNumber(value)},
          {"limit", words.of(more ? "atLeast" : "atMost", {{"limit", plainNumber(threshold)}})},
          {"margin", plainNumber(std::round(margin * 1e4) / 1e4)},
          {"passFrom", plainNumber(more ? limitAt : 0)},
          {"passWidth", plainNumber(more ? 100 - limitAt : limitAt)},
          {"limitAt", plainNumber(limitAt)},
          {"valueAt", plainNumber(valueAt)}};
}

json pictureAt(const RunFolder& run, const json& pair, const char* key) {
  const auto name = textIn(pair, key);
  const auto picture = name ? run.pictures.find(*name) : run.pictures.end();
  if (picture == run.pictures.end()) return false;
  return "data:image/jpeg;base64," + toBase64(picture->second);
}

json picturesOf(const RunFolder& run, const std::string& decision) {
  const json& pair = memberIn(memberIn(run.evidence, "pictures"), decision.c_str());
  json pictures{{"shown", pictureAt(run, pair, "shown")},
                {"reference", pictureAt(run, pair, "reference")}};
  if (!pictures["shown"].is_string() && !pictures["reference"].is_string()) return false;
  return pictures;
}

}  // namespace

json decisionsModel(const RunFolder& run, const RunCourse& course, const ReportWords& words) {
  json list = json::array();
  for (const std::string& name : namesIn(course)) {
    const json& event = *course.last("decision", name);
    const bool passed = flagIn(event, "passed").value_or(false);
    const auto value = numberIn(event, "value");
    const auto threshold = numberIn(event, "threshold");
    const double t = course.inFilm(event);
    json decision{{"id", std::to_string(list.size() + 1)},
                  {"title", words.name("decision", name)},
                  {"tone", passed ? "good" : "bad"},
                  {"sign", passed ? "✓" : "✗"},
                  {"outcome", words.of(passed ? "passed" : "failed")},
                  {"note", words.of(threshold ? "unmeasured" : "noValue")},
                  {"pictures", picturesOf(run, name)},
                  {"figures", false},
                  {"t", run.film ? json(plainNumber(t)) : json(false)},
                  {"jump", words.of("jump", {{"time", clockTime(t)}})}};
    if (value && threshold) {
      decision["figures"] = figuresOf(*value, *threshold, moreIsBetter(name), words);
    }
    list.push_back(std::move(decision));
  }
  return list;
}

}  // namespace corvana::app
