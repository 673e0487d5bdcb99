#include <regex>

#include <gtest/gtest.h>

#include "app/record/Files.h"
#include "app/report/Evidence.h"
#include "app/report/PageHash.h"
#include "app/report/ReportCourse.h"
#include "app/report/ReportFile.h"
#include "app/report/ReportPage.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr const char* kScript = "<script>window.hostile = 1</script>";
constexpr const char* kAttribute = "\" onload=\"window.hostile = 1";

std::string between(const std::string& text, const std::string& begin, const std::string& end) {
  const auto from = text.find(begin);
  if (from == std::string::npos) return {};
  const auto start = from + begin.size();
  return text.substr(start, text.find(end, start) - start);
}

bool holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

/// The record of a run, whose parts each test changes before it is written.
class ReportPageTest : public testing::Test {
 protected:
  void write() {
    std::string lines;
    for (const json& event : events)
      lines += event.dump() + "\n";
    writeBytes(run / "events.jsonl", lines);
    writeBytes(run / "film.mp4", "film");
    if (!evidence.is_null()) writeBytes(run / app::kEvidenceFileName, evidence.dump());
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(run.path())) {
      if (entry.path().filename() != "result.json") files.push_back(entry.path());
    }
    result["sha256"] = *app::sumsOf(files);
    writeBytes(run / "result.json", result.dump());
  }

  std::string page(const std::string& language = "en") {
    const fs::path resources = REPORT_RESOURCES;
    const auto words = app::ReportWords::load(resources / "languages", language);
    const auto folder = app::RunFolder::read(run.path(), nullptr, nullptr);
    EXPECT_TRUE(words && folder);
    if (!words || !folder) return {};
    const auto made = app::makeReportPage(*folder, *words, false, "film.mp4", resources);
    EXPECT_TRUE(made);
    return made.value_or("");
  }

  static std::string verdictIn(const std::string& page) {
    return between(page, "<section id=\"result\"", "</section>");
  }

  ScratchFolder run;
  json result{{"result", {{"film", "film.mp4"}}},
              {"camera", {{"name", "Camera"}, {"virtual", false}}},
              {"recording", {{"seconds", 12.0}, {"runs", 1}}},
              {"hints", json::array()},
              {"date", "2026-03-01"}};
  json events = json::array({
      {{"t", 0.5}, {"event", "mode"}, {"name", "selfieCapture"}},
      {{"t", 4.5},
       {"event", "decision"},
       {"name", "selfieFace"},
       {"value", 0.1},
       {"threshold", 0.44},
       {"passed", true}},
      {{"t", 4.5}, {"event", "mode"}, {"name", "idCapture"}},
  });
  json evidence{
      {"formatVersion", 1},
      {"text", "I open this account"},
      {"heard", {"i", "open", "account"}},
      {"spoken", {{0, 1}, {2, 4}, {12, 7}}},
      {"front", {{"shown", {{"lines", {"ER1KSSON"}}}}, {"reference", {{"lines", {"ERIKSSON"}}}}}},
      {"pictures", json::object()}};
};

TEST_F(ReportPageTest, SaysTheVerdictFirstAndShowsWhatItRestsOn) {
  write();
  const std::string shown = page();
  EXPECT_TRUE(holds(verdictIn(shown), "Identified:")) << verdictIn(shown);
  EXPECT_TRUE(holds(verdictIn(shown), "Nobody vouches"));
  EXPECT_TRUE(holds(shown, "data-time=\"4\"")) << "in the time of the film";
  EXPECT_TRUE(holds(shown, "at most 0.44") && holds(shown, "<dd>0.34</dd>"));
  EXPECT_TRUE(holds(shown, "<mark>open</mark> this <mark>account</mark>"));
  EXPECT_TRUE(holds(shown, "Not heard: this"));
  EXPECT_TRUE(holds(shown, "ER<ins>1</ins>KSSON") && holds(shown, "ER<del>I</del>KSSON"));
  EXPECT_TRUE(holds(shown, "no end was set") && holds(shown, "not on record"));
  EXPECT_EQ(shown, page()) << "the same record gives the same page";
}

TEST_F(ReportPageTest, ShowsTheFigureOfAVoiceWithoutLips) {
  events.push_back({{"t", 9.5},
                    {"event", "sign"},
                    {"name", "lipsAtRest"},
                    {"value", 0.8125},
                    {"threshold", 0.5},
                    {"seen", true}});
  write();
  EXPECT_TRUE(holds(page(), "voice while the lips rest") && holds(page(), "0.8125"));
}

TEST_F(ReportPageTest, LetsNothingOfARecordBecomeMarkup) {
  result["session"] = {{"id", kScript}, {"subject", kAttribute}};
  result["camera"]["name"] = kScript;
  result["hints"] = {{{"name", kScript}}, {{"name", "conflict"}, {"field", kScript}}};
  events.push_back({{"t", 5}, {"event", "decision"}, {"name", kAttribute}, {"passed", true}});
  events.push_back({{"t", 6}, {"event", "mode"}, {"name", kScript}});
  events.push_back({{"t", 6}, {"event", "field"}, {"name", kScript}, {"agreement", kAttribute}});
  events.push_back({{"t", 7}, {"event", "warning"}, {"text", kScript}});
  evidence["text"] = kScript;
  evidence["heard"] = {kScript};
  evidence["front"]["shown"]["lines"] = {kScript, "{{{style}}}"};
  evidence["front"]["reference"]["lines"] = {kAttribute};
  evidence["front"]["shown"]["fields"] = json::array(
      {{{"name", kScript}, {"source", "print"}, {"value", kScript}, {"knownBy", kScript}}});
  evidence["referenceHints"] = {{{"name", kScript}}, {{"name", "unread"}, {"field", kScript}}};
  evidence["pictures"] = {{"selfieFace", {{"shown", kAttribute}, {"reference", "../film.mp4"}}}};
  write();
  const std::string shown = page();
  EXPECT_FALSE(holds(shown, kScript));
  EXPECT_FALSE(holds(shown, kAttribute));
  EXPECT_TRUE(holds(shown, "&lt;script&gt;"));
  EXPECT_TRUE(holds(shown, "{{{style}}}")) << "text is not looked at for places to fill";
  EXPECT_FALSE(holds(shown, "<img")) << "no other file is a picture";
  const std::regex scripts("<script");
  EXPECT_EQ(std::distance(std::sregex_iterator(shown.begin(), shown.end(), scripts), {}), 1);
}

TEST_F(ReportPageTest, AllowsItsOwnScriptAndStyleAndNothingElse) {
  write();
  const std::string shown = page();
  const std::string policy = between(shown, "Content-Security-Policy\" content=\"", "\"");
  EXPECT_TRUE(policy.starts_with("default-src &apos;none&apos;;")) << policy;
  const auto quoted = [](const std::string& hash) {
    return std::regex_replace(hash, std::regex("'"), "&apos;");
  };
  const std::string style = between(shown, "<style>", "</style>");
  const std::string script = between(shown, "<script>", "</script>");
  EXPECT_TRUE(holds(policy, "style-src " + quoted(app::policyHash(style)) + ";"));
  EXPECT_TRUE(holds(policy, "script-src " + quoted(app::policyHash(script)) + ";"));
  EXPECT_FALSE(holds(policy, "unsafe"));
  EXPECT_FALSE(std::regex_search(shown, std::regex(R"((src|href)="(https?:)?//)")));
  EXPECT_FALSE(std::regex_search(shown, std::regex(R"(<[^>]*\s(on\w+|style)=)")))
      << "the policy would refuse it";
}

TEST_F(ReportPageTest, SaysHowEachFieldWasKnownAndWhatTheEnrolmentWarnedOf) {
  const auto field = [](const char* name, const char* source) {
    return json{{"name", name}, {"source", source}, {"value", "X"}};
  };
  json told = field("surname", "print");
  told["knownBy"] = "zone";
  json labelled = field("birthDate", "print");
  labelled["knownBy"] = nullptr;
  const json fields =
      json::array({field("surname", "zone"), field("birthDate", "zone"), labelled, told});
  evidence["front"]["shown"]["fields"] = fields;
  evidence["front"]["reference"]["fields"] = json::array({field("surname", "print")});
  for (const char* name : {"surname", "birthDate"}) {
    events.push_back({{"t", 5},
                      {"event", "field"},
                      {"name", name},
                      {"source", "zone"},
                      {"agreement", "agrees"}});
  }
  write();
  EXPECT_FALSE(holds(page(), "Warnings when")) << "of an earlier version";
  evidence["referenceHints"] = {{{"name", "unread"}, {"field", "expiryDate"}, {"source", "code"}},
                                {{"name", "expired"}}};
  write();
  const std::string shown = page();
  EXPECT_TRUE(holds(shown, "<td>agrees, but could not have conflicted (zone)</td>"));
  EXPECT_TRUE(holds(shown, "<td>agrees (zone)</td>")) << "a label named it";
  EXPECT_TRUE(holds(shown,
                    "<th scope=\"row\">surname</th><td>print (told by the zone); zone</td>"
                    "<td>print</td>"))
      << "evidence of earlier versions does not tell it of print";
  EXPECT_TRUE(holds(shown,
                    "<th scope=\"row\">date of birth</th>"
                    "<td>print (by its label or place); zone</td><td>–</td>"));
  EXPECT_TRUE(holds(shown, "<li>The date of expiry in the barcode was not found in print.</li>"));
  EXPECT_TRUE(holds(shown, "<li>The card had expired on that day.</li>"));
  evidence["referenceHints"] = json::array();
  write();
  EXPECT_TRUE(holds(page(), "None was given."));
}

TEST_F(ReportPageTest, SaysWhatIsAmissWithARecord) {
  struct Case {
    const char* what;
    std::function<void()> change;
    const char* verdict;
    const char* remark;
  };
  const Case cases[] = {
      {"an error with a known cause",
       [&] {
         result["error"] = {{"message", "It was"}, {"cause", "canceled"}};
       },
       "Not identified: the run was cancelled", ""},
      {"an error of the module's",
       [&] {
         result["error"] = {{"message", "A & B"}};
       },
       "Not identified: A &amp; B", ""},
      {"a card that had expired",
       [&] {
         result["result"] = {{"film", "film.mp4"}};
         result["hints"] = {{{"name", "expired"}}};
       },
       "Identified:", "had expired on 2026-03-01"},
      {"a virtual camera", [&] { result["camera"]["virtual"] = true; },
       "Identified:", "by itself it proves nothing"},
  };
  for (const Case& c : cases) {
    result.erase("error");
    result.erase("result");
    if (!holds(c.what, "error")) result["result"] = {{"film", "film.mp4"}};
    c.change();
    write();
    const std::string verdict = verdictIn(page());
    EXPECT_TRUE(holds(verdict, c.verdict) && holds(verdict, c.remark)) << c.what << verdict;
  }
  writeBytes(run / "events.jsonl", "{}\n");
  EXPECT_TRUE(holds(verdictIn(page()), "Do not rely on this record"));
}

TEST_F(ReportPageTest, ShowsNoEvidenceThatTheRunDidNotLeave) {
  write();
  evidence["text"] = "I owe you a million";
  writeBytes(run / app::kEvidenceFileName, evidence.dump());
  const std::string shown = page();
  EXPECT_FALSE(holds(shown, "million"));
  EXPECT_TRUE(holds(shown, "evidence.json is not the file that the run left"));
}

TEST_F(ReportPageTest, MakesAPageOfWhatIsLeftOfARun) {
  evidence = nullptr;
  write();
  EXPECT_TRUE(holds(page(), "There is no evidence.json"));
  events = {{{"t", "soon"}, {"event", 5}}, {{"event", "decision"}}, json::array()};
  result = {{"recording", 3}, {"hints", "x"}, {"session", json::array()}};
  write();
  const std::string shown = page();
  EXPECT_TRUE(holds(verdictIn(shown), "Not identified"));
  EXPECT_TRUE(holds(shown, "1 lines of events.jsonl could not be read")) << "a list is no event";
  evidence = {{"text", 5}, {"spoken", {1, {2}, {"a", "b"}, {-1e300, 1e300}}}, {"front", "x"}};
  write();
  EXPECT_FALSE(holds(page(), "Text read aloud"));
}

TEST_F(ReportPageTest, SpeaksFiveLanguages) {
  write();
  EXPECT_TRUE(holds(page("de"), "<html lang=\"de\" dir=\"ltr\">"));
  EXPECT_TRUE(holds(page("ar"), "<html lang=\"ar\" dir=\"rtl\">"));
}

TEST(RunCourse, ShowsTheLastRunAndMarksADecisionWhereItTurns) {
  std::vector<json> events;
  const auto decided = [&](double t, bool passed) {
    events.push_back({{"t", t}, {"event", "decision"}, {"name", "frontFace"}, {"passed", passed}});
  };
  events.push_back({{"t", 0}, {"event", "mode"}, {"name", "selfieCapture"}});
  decided(3, true);
  events.push_back({{"t", 20}, {"event", "call"}, {"name", "retry"}});
  events.push_back({{"t", 20}, {"event", "mode"}, {"name", "selfieCapture"}});
  for (const double t : {21.0, 21.5, 22.0})
    decided(t, false);
  decided(22.5, true);
  const app::RunCourse course(events, 10);
  EXPECT_EQ(course.last("decision", "selfieFace"), nullptr);
  const auto words = app::ReportWords::load(fs::path(REPORT_RESOURCES) / "languages", "en");
  std::vector<std::string> times;
  for (const json& mark : course.marks(*words))
    times.push_back(mark["t"].get<std::string>() + " " + mark["tone"].get<std::string>());
  EXPECT_EQ(times, (std::vector<std::string>{"1 bad", "2.5 good"}));
}

TEST(ReportFile, NamesTheFilmFromWhereThePageLies) {
  EXPECT_EQ(app::addressOf("/a/run/film.mp4", "/a/run/report.html"), "film.mp4");
  EXPECT_EQ(app::addressOf("/a/run #1/film.mp4", "/a/page.html"), "run%20%231/film.mp4");
  EXPECT_EQ(app::addressOf("/a/run/film.mp4", "/b/page.html"), "../a/run/film.mp4");
}

}  // namespace
}  // namespace corvana::tests
