#include "app/report/ReportCard.h"

#include <algorithm>
#include <map>
#include <set>

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

/// The fields of both sides, "shown" or of the "reference"; of one that stands twice the first.
std::map<FieldKey, json> fieldsOf(const json& evidence, const char* when) {
  std::map<FieldKey, json> fields;
  for (const char* side : {"front", "back"}) {
    for (const json& field : memberIn(memberIn(memberIn(evidence, side), when), "fields")) {
      const auto name = textIn(field, "name");
      const auto source = textIn(field, "source");
      if (name && source) fields.emplace(FieldKey{*name, *source}, field);
    }
  }
  return fields;
}

/// How a field came to be known. Evidence of earlier versions does not tell it of print.
std::string origin(const std::string& source, const json& field, const ReportWords& words) {
  if (source != "print" || !field.contains("knownBy")) return words.name("source", source);
  const auto record = textIn(field, "knownBy");
  return record ? words.of("knownByRecord", {{"source", words.name("source", *record)}})
                : words.of("knownByLabel");
}

std::string originsOf(const std::string& name, const std::map<FieldKey, json>& fields,
                      const ReportWords& words) {
  std::vector<std::string> all;
  for (const auto& [key, field] : fields) {
    if (key.first == name) all.push_back(origin(key.second, field, words));
  }
  return all.empty() ? "–" : joined(all, "; ");
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
  const auto fields = fieldsOf(run.evidence, "shown");
  const auto memberOf = [&](const std::string& name, const std::string& source, const char* key) {
    const auto field = fields.find({name, source});
    return field == fields.end() ? std::nullopt : textIn(field->second, key);
  };
  std::map<FieldKey, std::size_t> rowOf;
  json rows = json::array();
  for (const json& event : course.events()) {
    if (textIn(event, "event") != "field") continue;
    const std::string name = textIn(event, "name").value_or("");
    const std::string source = textIn(event, "source").value_or("");
    const std::string agreement = textIn(event, "agreement").value_or("");
    const bool isTold = agreement == "agrees" && memberOf(name, "print", "knownBy") == source;
    json row{{"name", words.name("field", name)},
             {"print", memberOf(name, "print", "value").value_or("–")},
             {"record", memberOf(name, source, "value").value_or("–")},
             {"source", words.name("source", source)},
             {"agreement", words.name("agreement", agreement) +
                               (isTold ? ", " + words.of("couldNotConflict") : "")},
             {"tone", agreement == "conflicts" ? "bad" : ""}};
    // It is told again whenever a picture says otherwise; the last word counts.
    const auto [place, isNew] = rowOf.try_emplace({name, source}, rows.size());
    if (isNew) rows.push_back({});
    rows[place->second] = std::move(row);
  }
  return rows;
}

json originsModel(const RunFolder& run, const ReportWords& words) {
  const auto shown = fieldsOf(run.evidence, "shown");
  const auto reference = fieldsOf(run.evidence, "reference");
  std::set<std::string> names;
  for (const auto* fields : {&shown, &reference}) {
    for (const auto& [key, field] : *fields)
      names.insert(key.first);
  }
  json rows = json::array();
  for (const std::string& name : names) {
    rows.push_back({{"name", words.name("field", name)},
                    {"shown", originsOf(name, shown, words)},
                    {"reference", originsOf(name, reference, words)}});
  }
  return rows;
}

}  // namespace corvana::app
