#include "app/report/ReportCard.h"

#include <algorithm>
#include <map>

#include "app/report/TextDifference.h"

namespace corvana::app {
namespace {

using nlohmann::json;

constexpr double kLongestText = 1e6;

std::string joined(const std::vector<std::string>& words, const char* between) {
  std::string all;
  for (const std::string& word : words)
    all += (all.empty() ? "" : between) + word;
  return all;
}

std::vector<capture::MatchRange> rangesIn(const json& evidence) {
  std::vector<capture::MatchRange> ranges;
  for (const json& pair : memberIn(evidence, "spoken")) {
    if (!pair.is_array() || pair.size() != 2) continue;
    if (!pair[0].is_number() || !pair[1].is_number()) continue;
    const auto numberAt = [&](std::size_t i) {
      return static_cast<int>(std::clamp(pair[i].get<double>(), 0.0, kLongestText));
    };
    ranges.push_back({numberAt(0), numberAt(1)});
  }
  return ranges;
}

json piecesToJson(const TextPieces& pieces, const char* mark) {
  json list = json::array();
  for (const TextPiece& piece : pieces)
    list.push_back({{"text", piece.text}, {mark, piece.marked}});
  return list;
}

json sideModel(const std::string& name, const std::vector<std::string>& shown,
               const std::vector<std::string>& reference, const ReportWords& words) {
  const TextDifference difference = compareTexts(shown, reference);
  return {{"name", name},
          {"summary", difference.differing == 0
                          ? words.of("same")
                          : words.of("differs", {{"count", std::to_string(difference.differing)},
                                                 {"all", std::to_string(difference.all)}})},
          {"shown", piecesToJson(difference.first, "differs")},
          {"reference", piecesToJson(difference.second, "differs")}};
}

using FieldKey = std::pair<std::string, std::string>;  ///< its name and where it was read

std::map<FieldKey, std::string> fieldValues(const json& evidence) {
  std::map<FieldKey, std::string> values;
  for (const char* side : {"front", "back"}) {
    const json& shown = memberIn(memberIn(evidence, side), "shown");
    for (const json& field : memberIn(shown, "fields")) {
      const auto name = textIn(field, "name");
      const auto source = textIn(field, "source");
      if (name && source)
        values.emplace(FieldKey{*name, *source}, textIn(field, "value").value_or(""));
    }
  }
  return values;
}

}  // namespace

json readingModel(const RunFolder& run, const ReportWords& words) {
  const auto text = textIn(run.evidence, "text");
  if (!text) return false;
  const auto ranges = rangesIn(run.evidence);
  const auto missed = wordsWithoutMark(*text, ranges);
  const auto heard = textsIn(run.evidence, "heard");
  return {{"pieces", piecesToJson(markRanges(*text, ranges), "heard")},
          {"missed", missed.empty() ? words.of("allHeard")
                                    : words.of("missed", {{"words", joined(missed, ", ")}})},
          {"guess", heard.empty() ? words.of("guessNone")
                                  : words.of("guess", {{"words", joined(heard, " ")}})}};
}

json sidesModel(const RunFolder& run, const ReportWords& words) {
  json list = json::array();
  for (const char* side : {"front", "back"}) {
    const json& shown = memberIn(memberIn(run.evidence, side), "shown");
    const json& reference = memberIn(memberIn(run.evidence, side), "reference");
    if (!shown.is_object()) continue;
    list.push_back(
        sideModel(words.of(side), textsIn(shown, "lines"), textsIn(reference, "lines"), words));
    const auto zone = textsIn(reference, "zone");
    if (zone.empty()) continue;
    list.push_back(sideModel(words.of("zoneDiffers"), textsIn(shown, "zone"), zone, words));
  }
  return list;
}

json fieldsModel(const RunFolder& run, const RunCourse& course, const ReportWords& words) {
  const auto values = fieldValues(run.evidence);
  const auto valueOf = [&](const std::string& name, const std::string& source) {
    const auto value = values.find({name, source});
    return value == values.end() ? std::string("–") : value->second;
  };
  std::map<FieldKey, std::size_t> rowOf;
  json rows = json::array();
  for (const json& event : course.events()) {
    if (textIn(event, "event") != "field") continue;
    const std::string name = textIn(event, "name").value_or("");
    const std::string source = textIn(event, "source").value_or("");
    const std::string agreement = textIn(event, "agreement").value_or("");
    json row{{"name", words.name("field", name)},
             {"print", valueOf(name, "print")},
             {"record", valueOf(name, source)},
             {"source", words.name("source", source)},
             {"agreement", words.name("agreement", agreement)},
             {"tone", agreement == "conflicts" ? "bad" : ""}};
    // It is told again whenever a picture says otherwise; the last word counts.
    const auto [place, isNew] = rowOf.try_emplace({name, source}, rows.size());
    if (isNew) rows.push_back({});
    rows[place->second] = std::move(row);
  }
  return rows;
}

}  // namespace corvana::app
