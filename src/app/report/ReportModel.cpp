#include "app/report/ReportModel.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "app/record/RunRecord.h"
#include "app/report/ReportCard.h"
#include "app/report/ReportCourse.h"
#include "app/report/ReportDecisions.h"

namespace corvana::app {
namespace {

using nlohmann::json;

constexpr std::size_t kMostEvents = 3000;

/// Lists are told to be there or not: a template can't ask for their length.
void addList(json& model, const std::string& name, json list) {
  std::string flag = "has" + name;
  flag[3] = static_cast<char>(std::toupper(static_cast<unsigned char>(flag[3])));
  model[flag] = !list.empty();
  model[name] = std::move(list);
}

class ReportModel {
 public:
  ReportModel(const RunFolder& run, const ReportWords& words, bool hasKeys)
      : run_(run),
        words_(words),
        hasKeys_(hasKeys),
        course_(run.events, numberIn(memberIn(run.result, "recording"), "seconds").value_or(0)) {}

  json make() const {
    json model{{"w", words_.all()}, {"verdict", verdict()}, {"film", film()}};
    model["title"] = words_.of("title") + sessionSuffix();
    addList(model, "missing", missing());
    addList(model, "decisions", decisionsModel(run_, course_, words_));
    model["reading"] = readingModel(run_, words_);
    addList(model, "sides", sidesModel(run_, words_));
    addList(model, "fields", fieldsModel(run_, course_, words_));
    addList(model, "origins", originsModel(run_, words_));
    model["enrolment"] = enrolment();
    model["liveness"] = liveness();
    addList(model, "signs", signs());
    addList(model, "attempts", attempts());
    model["quality"] = quality();
    model["facts"] = facts();
    model["findings"] = findings();
    addEvents(model);
    return model;
  }

 private:
  /// Whether something else is amiss than that the run has no result.
  bool isBroken() const {
    return std::ranges::any_of(run_.check.findings, [this](const RecordFinding& finding) {
      return !finding.holds && (run_.hasResult || finding.part != kResultFileName);
    });
  }

  std::string whyNot() const {
    const json& error = memberIn(run_.result, "error");
    const std::string message = textIn(error, "message").value_or("");
    const std::string cause = textIn(error, "cause").value_or("other");
    const std::string words = words_.name("cause", cause, {{"message", message}});
    return words == cause ? message : words;
  }

  json verdict() const {
    json remarks = json::array();
    const auto tell = [&](const char* tone, const std::string& sentence) {
      return json{{"tone", tone},
                  {"sign", tone == std::string("good") ? "✓" : "✗"},
                  {"sentence", sentence},
                  {"vouched", hasKeys_ && run_.check.holds()},
                  {"remarks", remarks}};
    };
    if (isBroken()) {
      remarks.push_back(words_.of("brokenNext"));
      addRemarks(remarks);
      return tell("bad", words_.of("broken"));
    }
    if (!hasKeys_) remarks.push_back(words_.of("unvouched"));
    addRemarks(remarks);
    if (!run_.hasResult) return tell("bad", words_.of("neverEnded"));
    if (memberIn(run_.result, "result").is_object()) return tell("good", words_.of("identified"));
    return tell("bad", words_.of("notIdentified", {{"why", whyNot()}}));
  }

  void addRemarks(json& remarks) const {
    if (memberIn(run_.result, "redaction").is_object()) remarks.push_back(words_.of("redacted"));
    const json& camera = memberIn(run_.result, "camera");
    if (flagIn(camera, "virtual").value_or(false)) remarks.push_back(words_.of("virtualCamera"));
    for (const json& hint : memberIn(run_.result, "hints"))
      remarks.push_back(hintSentence(hint));
  }

  std::string hintSentence(const json& hint) const {
    static const std::map<std::string, const char*> kSentences{
        {"expired", "hintExpired"},         {"notYetValid", "hintNotYetValid"},
        {"underAge", "hintUnderAge"},       {"voiceWithoutLips", "hintVoiceWithoutLips"},
        {"suspectCopy", "hintSuspectCopy"}, {"conflict", "hintConflict"}};
    return hintSentence(hint, kSentences);
  }

  std::string hintSentence(const json& hint,
                           const std::map<std::string, const char*>& sentences) const {
    const std::string name = textIn(hint, "name").value_or("");
    const auto sentence = sentences.find(name);
    if (sentence == sentences.end()) return words_.of("hint", {{"name", name}});
    return words_.of(sentence->second,
                     {{"date", textIn(run_.result, "date").value_or("")},
                      {"source", words_.name("source", textIn(hint, "source").value_or(""))},
                      {"field", words_.name("field", textIn(hint, "field").value_or(""))}});
  }

  /// False where the reference or its run is of a version that did not keep it.
  json enrolment() const {
    static const std::map<std::string, const char*> kSentences{
        {"expired", "earlierExpired"},   {"notYetValid", "earlierNotYetValid"},
        {"underAge", "earlierUnderAge"}, {"suspectCopy", "hintSuspectCopy"},
        {"conflict", "hintConflict"},    {"doubtful", "hintDoubtful"},
        {"unread", "hintUnread"},        {"untitled", "hintUntitled"}};
    const json& hints = memberIn(run_.evidence, "referenceHints");
    if (!hints.is_array()) return false;
    json sentences = json::array();
    for (const json& hint : hints)
      sentences.push_back(hintSentence(hint, kSentences));
    json model = json::object();
    addList(model, "warnings", std::move(sentences));
    return model;
  }

  std::string sessionSuffix() const {
    const auto id = textIn(memberIn(run_.result, "session"), "id");
    return id ? " – " + *id : "";
  }

  json missing() const {
    json list = json::array();
    if (!run_.hasResult) list.push_back(words_.of("missingResult"));
    if (run_.events.empty()) list.push_back(words_.of("missingEvents"));
    if (!run_.hasEvidence && run_.altered.empty()) list.push_back(words_.of("missingEvidence"));
    for (const std::string& name : run_.altered)
      list.push_back(words_.of("alteredEvidence", {{"name", name}}));
    return list;
  }

  json film() const {
    if (!run_.film) return false;
    json film{{"unplayable", words_.of("filmUnplayable", {{"name", *run_.film}})},
              {"length", plainNumber(course_.filmSeconds())},
              {"phases", course_.phases(words_)}};
    addList(film, "marks", course_.marks(words_));
    return film;
  }

  std::string liveness() const {
    for (const char* name : {"spoof", "living", "undecided"}) {
      if (course_.last("liveness", name)) return words_.of(name);
    }
    return words_.of("livenessNone");
  }

  json signs() const {
    json list = json::array();
    for (const char* name :
         {"blink", "relief", "repetition", "edges", "samePerson", "lipsAtRest"}) {
      const json* sign = course_.last("sign", name);
      if (!sign) continue;
      const auto numberOr = [&](const char* key) {
        const auto number = numberIn(*sign, key);
        return number ? plainNumber(*number) : std::string("–");
      };
      list.push_back({{"name", words_.name("sign", name)},
                      {"value", numberOr("value")},
                      {"limit", numberOr("threshold")},
                      {"seen", words_.of(flagIn(*sign, "seen").value_or(false) ? "yes" : "no")}});
    }
    return list;
  }

  /// Earlier records have none.
  json attempts() const {
    json list = json::array();
    const auto timeAt = [](const json& attempt, const char* key) {
      return clockTime(std::clamp(numberIn(attempt, key).value_or(0), 0.0, 1e6));
    };
    for (const json& attempt : memberIn(run_.result, "attempts")) {
      const std::string reason = textIn(attempt, "reason").value_or("");
      const bool accepted = reason == "accepted";
      const auto told = textIn(attempt, "issue");
      list.push_back({{"run", countOf(attempt, "run")},
                      {"phase", words_.name("phase", textIn(attempt, "phase").value_or(""))},
                      {"from", timeAt(attempt, "from")},
                      {"to", timeAt(attempt, "to")},
                      {"reason", reasonWords(reason) + (told ? ": " + *told : "")},
                      {"sign", accepted ? "✓" : "✗"},
                      {"tone", accepted ? "good" : "bad"}});
    }
    return list;
  }

  /// What ended the flow ended the attempt that was under way as well.
  std::string reasonWords(const std::string& reason) const {
    const std::string words = words_.name("reason", reason);
    return words == reason ? words_.name("cause", reason, {{"message", reason}}) : words;
  }

  json fact(const char* label, const std::string& value) const {
    return {{"label", words_.of(label)}, {"value", value}};
  }

  std::string deviceName(const json& device) const {
    if (!device.is_object()) return words_.of("none");
    const std::string name = textIn(device, "name").value_or("");
    const bool isVirtual = flagIn(device, "virtual").value_or(false);
    return isVirtual ? words_.of("virtual", {{"name", name}}) : name;
  }

  std::string countOf(const json& recording, const char* key) const {
    return plainCount(numberIn(recording, key).value_or(0));
  }

  static std::string plainCount(double count) {
    return std::to_string(std::llround(std::clamp(count, 0.0, 1e15)));
  }

  json quality() const {
    json list = json::array();
    const json& recording = memberIn(run_.result, "recording");
    if (run_.hasResult) {
      list.push_back(fact("camera", deviceName(memberIn(run_.result, "camera"))));
      list.push_back(fact("microphone", deviceName(memberIn(run_.result, "microphone"))));
    }
    if (recording.is_object()) {
      list.push_back(
          fact("frames", words_.of("framesOf", {{"written", countOf(recording, "framesWritten")},
                                                {"captured", countOf(recording, "framesCaptured")},
                                                {"dropped", countOf(recording, "framesDropped")},
                                                {"late", countOf(recording, "framesLate")}})));
      for (const auto& [label, key] :
           {std::pair{"seconds", "seconds"}, std::pair{"silence", "secondsOfSilence"}}) {
        const double value = numberIn(recording, key).value_or(0);
        list.push_back(fact(label, words_.of("inSeconds", {{"value", plainNumber(value)}})));
      }
    }
    list.push_back(fact("hints", hintsTold()));
    return list;
  }

  std::string hintsTold() const {
    std::string told;
    for (const char* name : {"tooDark", "blurred", "covered", "faceTooFar", "faceTooDark",
                             "faceHidden", "faceTurnedAway", "faceBlurred", "faceOutOfSight"}) {
      if (!course_.last("hint", name)) continue;
      told += (told.empty() ? "" : ", ") + words_.name("hint", name);
    }
    return told.empty() ? words_.of("none") : told;
  }

  json facts() const {
    json list = json::array();
    const json& session = memberIn(run_.result, "session");
    const json& clock = memberIn(run_.result, "clock");
    const json& program = memberIn(run_.result, "program");
    const auto add = [&](const char* label, const std::optional<std::string>& value) {
      if (value && !value->empty()) list.push_back(fact(label, *value));
    };
    add("session", textIn(session, "id"));
    add("subject", textIn(session, "subject"));
    add("clockStart", textIn(clock, "start"));
    add("clockEnd", textIn(clock, "end"));
    add("date", textIn(run_.result, "date"));
    if (run_.hasResult) add("runs", countOf(memberIn(run_.result, "recording"), "runs"));
    if (run_.hasResult) addTerms(list);
    add("host", textIn(run_.result, "host"));
    if (program.is_object()) {
      add("program", textIn(program, "name").value_or("") + " " +
                         textIn(program, "version").value_or("") + ", " +
                         textIn(program, "build").value_or(""));
    }
    return list;
  }

  void addTerms(json& list) const {
    const bool agreed = textIn(run_.result, "consent").has_value();
    list.push_back(fact("consent", words_.of(agreed ? "consentGiven" : "consentNone")));
    const auto until = textIn(memberIn(run_.result, "retention"), "until");
    list.push_back(fact("keptUntil", until ? *until : words_.of("keptWithoutEnd")));
  }

  json findings() const {
    json list = json::array();
    for (const RecordFinding& finding : run_.check.findings) {
      list.push_back({{"part", finding.part},
                      {"sentence", finding.sentence},
                      {"verdict", words_.of(finding.holds ? "holds" : "holdsNot")},
                      {"sign", finding.holds ? "✓" : "✗"},
                      {"tone", finding.holds ? "good" : "bad"}});
    }
    return list;
  }

  void addEvents(json& model) const {
    json rows = json::array();
    for (const json& event : run_.events) {
      if (rows.size() == kMostEvents) break;
      json rest = event;
      rest.erase("t");
      rest.erase("event");
      rows.push_back({{"time", clockTime(std::clamp(numberIn(event, "t").value_or(0), 0.0, 1e6))},
                      {"event", textIn(event, "event").value_or("")},
                      {"details", rest.dump()}});
    }
    const std::string count = std::to_string(rows.size());
    const std::string all = std::to_string(run_.events.size());
    json remarks = json::array();
    if (count != all) remarks.push_back(words_.of("courseCut", {{"count", count}, {"all", all}}));
    if (run_.brokenEvents > 0) {
      const std::string broken = std::to_string(run_.brokenEvents);
      remarks.push_back(words_.of("courseBroken", {{"count", broken}}));
    }
    model["courseRemarks"] = std::move(remarks);
    model["courseShow"] = words_.of("courseShow", {{"count", count}});
    addList(model, "events", std::move(rows));
  }

  const RunFolder& run_;
  const ReportWords& words_;
  const bool hasKeys_;
  const RunCourse course_;
};

}  // namespace

json makeReportModel(const RunFolder& run, const ReportWords& words, bool hasKeys) {
  return ReportModel(run, words, hasKeys).make();
}

}  // namespace corvana::app
