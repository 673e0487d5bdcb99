#include <gtest/gtest.h>

#include "app/endtoend/Program.h"
#include "devices/recorded/MediaProbe.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using Arguments = std::vector<std::string>;

ProgramRun recheck(const fs::path& run, const Session& session, Arguments more = {}) {
  const bool hasText = !more.empty() && more.front() == "--text";
  Arguments arguments{"recheck", run, "--reference", session.reference};
  if (!hasText) arguments.insert(arguments.end(), {"--text-file", session.text});
  arguments.insert(arguments.end(), more.begin(), more.end());
  return runVideoid(arguments);
}

/// A copy of the sealed run that `Sessions.sealed` made.
fs::path copyOfSealed(const ScratchFolder& scratch) {
  fs::path run = scratch / "run";
  fs::copy(fs::path(SESSIONS) / "sealed", run);
  return run;
}

/// Puts another file in its place and makes the sums anew, as whoever forges a record can.
void exchange(const fs::path& run, const std::string& name, const std::string& bytes) {
  writeBytes(run / name, bytes);
  json result = json::parse(bytesOf(run / "result.json"));
  const ProgramRun sum = runProgram("sha256sum", {run / name});
  result["sha256"][name] = sum.output.substr(0, 64);
  if (name == "film.mp4") {
    result["recording"]["seconds"] =
        platform::inSeconds(devices::probe(run / name).value().duration);
  }
  writeBytes(run / "result.json", result.dump());
}

TEST(Recheck, AgreesWithTheRecordOfAGoodSessionAndLeavesItAsItWas) {
  const Session session = Session::of("short");
  const fs::path run = fs::path(SESSIONS) / "sealed";
  const std::string before = bytesOf(run / "result.json");
  const auto filesOf = [&] {
    return std::distance(fs::directory_iterator(run), fs::directory_iterator());
  };
  const auto filesBefore = filesOf();
  const ProgramRun checked =
      recheck(run, session, {"--json", "--key", fs::path(SESSIONS) / "sealed.pem"});
  EXPECT_EQ(checked.exitCode, 0) << checked.output << checked.errors;
  const json report = json::parse(checked.output);
  EXPECT_EQ(report["agrees"], true);
  EXPECT_EQ(report["trusted"], true);
  EXPECT_EQ(report["ending"]["rechecked"], "result");
  EXPECT_EQ(report["contradictions"], json::array());
  std::vector<std::string> names;
  for (const json& judgement : report["judgements"]) {
    names.push_back(judgement["name"]);
    EXPECT_NE(judgement["stand"], "turned") << judgement;
  }
  for (const char* name : {"selfieFace", "frontFace", "frontText", "backMrz", "spokenWords"})
    EXPECT_EQ(std::count(names.begin(), names.end(), name), 1) << name;
  EXPECT_EQ(bytesOf(run / "result.json"), before);
  EXPECT_EQ(filesOf(), filesBefore);
}

TEST(Recheck, DiffersWithAnotherTextAndUnderStricterLimits) {
  const ScratchFolder scratch;
  const Session session = Session::of("short");
  const fs::path run = fs::path(SESSIONS) / "sealed";
  const ProgramRun other = recheck(run, session, {"--text", "the quick brown fox jumps", "--json"});
  EXPECT_EQ(other.exitCode, 1) << other.errors;
  EXPECT_NE(other.output.find("The text is not the one"), std::string::npos) << other.output;
  EXPECT_NE(json::parse(other.output)["ending"]["rechecked"], "result");

  writeBytes(scratch / "strict.json", R"({"videoCapture.idToSelfieMatchThreshold": 0.01})");
  const ProgramRun strict = recheck(run, session, {"--options", scratch / "strict.json"});
  EXPECT_EQ(strict.exitCode, 1) << strict.errors;
  EXPECT_NE(strict.output.find("differs"), std::string::npos) << strict.output;
  EXPECT_NE(strict.output.find("No key vouches"), std::string::npos) << strict.output;
  EXPECT_NE(strict.output.find("idToSelfieMatchThreshold is 0.01"), std::string::npos);
}

TEST(Recheck, DiffersWithTheFilmOfAnotherPersonWhoseSumsWereMadeAnew) {
  const ScratchFolder scratch;
  const Session session = Session::of("short");
  const fs::path run = copyOfSealed(scratch);
  fs::remove(run / "seal.jsonl");
  exchange(run, "film.mp4", bytesOf(Session::of("wrong-person").camera));
  const ProgramRun checked = recheck(run, session, {"--json"});
  EXPECT_EQ(checked.exitCode, 1) << checked.errors;
  const json report = json::parse(checked.output);
  EXPECT_EQ(report["trusted"], false);
  bool faceTurned = false;
  for (const json& judgement : report["judgements"])
    faceTurned |= judgement["name"] == "selfieFace" && judgement["stand"] == "turned";
  EXPECT_TRUE(faceTurned) << checked.output;
}

TEST(Recheck, AgreesWithTheRecordsOfFailedSessionsOneAfterTheOther) {
  const ScratchFolder scratch;
  const Session good = Session::of("short");
  for (const char* script : {"wrong-back", "silence"}) {
    const Session session = Session::of(script);
    const ProgramRun captured =
        runVideoid({"capture", "--reference", session.reference, "--text-file", session.text,
                    "--camera", session.camera, "--options", SAMPLES "/short-options.json",
                    "--keep", "--output", scratch / ("runs/" + std::string(script))});
    ASSERT_EQ(captured.exitCode, 1) << captured.errors;
  }
  fs::create_directories(scratch / "runs/broken");
  writeBytes(scratch / "runs/broken/result.json", "{}");
  const ProgramRun checked = recheck(scratch / "runs", good);
  EXPECT_EQ(checked.exitCode, 2) << checked.output << checked.errors;
  EXPECT_NE(checked.output.find("wrong-back: agrees\n"), std::string::npos) << checked.output;
  EXPECT_NE(checked.output.find("silence: agrees\n"), std::string::npos) << checked.output;
  EXPECT_NE(checked.errors.find("is not the result of a run"), std::string::npos) << checked.errors;
}

TEST(Recheck, SaysInOneSentenceWhatCannotBeJudged) {
  const ScratchFolder scratch;
  const Session session = Session::of("short");
  const struct {
    const char* file;   ///< of the record, that is spoilt
    const char* bytes;  ///< null: it is gone
    const char* sentence;
  } cases[] = {
      {"result.json", nullptr, "the run never ended"},
      {"result.json", R"({"result": {}, "options": [1]})", "is not the result of a run"},
      {"result.json", R"({"result": {}, "options": {"speed": 3}})", "no option \"speed\""},
      {"events.jsonl", "{}\n", "is no event of a run"},
      {"events.jsonl", nullptr, "events.jsonl"},
      {"film.mp4", nullptr, "holds no film"},
      {"film.mp4", "not a film", "is not a video"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.sentence);
    const fs::path run = copyOfSealed(scratch);
    if (c.bytes) {
      writeBytes(run / c.file, c.bytes);
    } else {
      fs::remove(run / c.file);
    }
    const ProgramRun checked = recheck(run, session);
    EXPECT_EQ(checked.exitCode, 2) << checked.output;
    EXPECT_NE(checked.errors.find(c.sentence), std::string::npos) << checked.errors;
    EXPECT_EQ(std::count(checked.errors.begin(), checked.errors.end(), '\n'), 1) << checked.errors;
    fs::remove_all(run);
  }
}

}  // namespace
}  // namespace corvana::tests
