#include <gtest/gtest.h>

#include "app/endtoend/Program.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr const char* kName = "ERIKSSON";  ///< on the card of the session

TEST(Report, ShowsASealedRunAndSaysWhoVouchesForIt) {
  const ScratchFolder scratch;
  const fs::path run = scratch / "run";
  fs::copy(fs::path(SESSIONS) / "sealed", run);
  const fs::path key = fs::path(SESSIONS) / "sealed.pem";
  const ProgramRun made = runVideoid({"report", run, "--key", key});
  ASSERT_EQ(made.exitCode, 0) << made.errors;
  EXPECT_EQ(made.output.find(kName), std::string::npos) << "no name on a console";
  const std::string page = bytesOf(run / "report.html");
  EXPECT_EQ(fs::status(run / "report.html").permissions(),
            fs::perms::owner_read | fs::perms::owner_write);
  for (const char* part : {"Identified:", kName, "Every word was heard", "data:image/jpeg;base64,",
                           "sealed by the key", "src=\"film.mp4\""}) {
    EXPECT_NE(page.find(part), std::string::npos) << part;
  }
  EXPECT_LT(page.size(), 2'000'000U);

  const ProgramRun verified = runVideoid({"verify", run, "--key", key});
  EXPECT_EQ(verified.exitCode, 0) << verified.errors;
  EXPECT_NE(verified.output.find("report.html: made afterwards"), std::string::npos);
  EXPECT_EQ(runVideoid({"report", run, "--language", "ar"}).exitCode, 0) << "it replaces its own";
  writeBytes(run / "evidence-front.jpg", bytesOf(run / "evidence-back.jpg"));
  ASSERT_EQ(runVideoid({"report", run, "--key", key}).exitCode, 0);
  EXPECT_NE(bytesOf(run / "report.html").find("Do not rely on this record"), std::string::npos);
}

TEST(Report, BindsTheEvidenceAndKeepsItOutOfTheEvents) {
  const fs::path run = fs::path(SESSIONS) / "sealed";
  const json sums = json::parse(bytesOf(run / "result.json"))["sha256"];
  EXPECT_NE(bytesOf(run / "evidence.json").find(kName), std::string::npos);
  EXPECT_EQ(bytesOf(run / "events.jsonl").find(kName), std::string::npos);
  int evidence = 0;
  for (const auto& entry : fs::directory_iterator(run)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with("evidence")) continue;
    ++evidence;
    EXPECT_TRUE(sums.contains(name)) << name;
    EXPECT_EQ(entry.status().permissions(), fs::perms::owner_read | fs::perms::owner_write);
  }
  EXPECT_EQ(evidence, 8);
}

TEST(Report, RefusesInOneSentenceWhatItCannotDo) {
  const ScratchFolder scratch;
  const fs::path run = fs::path(SESSIONS) / "sealed";
  writeBytes(scratch / "there.html", "mine");
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
      {{"report", scratch.path()}, "Name the folder of a run"},
      {{"report", run, "--language", "tlh"}, "choose from ar, de, en, es, fr"},
      {{"report", run, "--output", scratch / "there.html"}, "so that nothing is overwritten"},
      {{"report", run, "--output", run / "page.html"}, "lies within the record"},
      {{"report", run, "--output", scratch / "no/page.html"}, "(No such file or directory)"},
      {{"report", run, "--key", scratch / "no.pem"}, "no.pem"},
  };
  for (const auto& [arguments, sentence] : cases) {
    const ProgramRun refused = runVideoid(arguments);
    EXPECT_EQ(refused.exitCode, 2) << sentence;
    EXPECT_NE(refused.errors.find(sentence), std::string::npos) << refused.errors;
    EXPECT_EQ(std::count(refused.errors.begin(), refused.errors.end(), '\n'), 1);
  }
  EXPECT_EQ(bytesOf(scratch / "there.html"), "mine");
}

}  // namespace
}  // namespace corvana::tests
