#include <gtest/gtest.h>

#include "app/endtoend/Program.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using Arguments = std::vector<std::string>;

class PrivacyTest : public testing::Test {
 protected:
  void SetUp() override {
    const ProgramRun made = runVideoid({"key", "new", "--pem", "--key", scratch / "key"});
    ASSERT_EQ(made.exitCode, 0) << made.errors;
    writeBytes(scratch / "public", made.output);
    writeBytes(scratch / "consent",
               R"({"given": true, "statement": "Yes", "time": "2026-03-01T09:00:00Z"})");
  }

  /// Of a session that ends with the camera's recording.
  Arguments capture(const Arguments& more) const {
    const Session session = Session::of("face-leaves");
    Arguments arguments{
        "capture",    "--reference",  session.reference, "--text-file", session.text,
        "--camera",   session.camera, "--output",        run,           "--date",
        "2026-03-01", "--key",        scratch / "key"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  ProgramRun verify() const { return runVideoid({"verify", run, "--key", scratch / "public"}); }

  ScratchFolder scratch;
  const fs::path run = scratch / "runs/one";
};

TEST_F(PrivacyTest, RecordsNothingWithoutTheConsentThatIsDemanded) {
  const ProgramRun none = runVideoid(capture({"--require-consent"}));
  EXPECT_EQ(none.exitCode, 2);
  EXPECT_NE(none.errors.find("--consent"), std::string::npos) << none.errors;
  writeBytes(scratch / "no",
             R"({"given": false, "statement": "Yes", "time": "2026-03-01T09:00:00Z"})");
  EXPECT_EQ(runVideoid(capture({"--require-consent", "--consent", scratch / "no"})).exitCode, 2);
  EXPECT_FALSE(fs::exists(run));
}

TEST_F(PrivacyTest, BindsConsentAndTimeToTheRunLeavesHashesAndPurgesThem) {
  const Arguments terms{"--require-consent",
                        "--consent",
                        scratch / "consent",
                        "--retain-days",
                        "30",
                        "--failed",
                        "hashes",
                        "--on-retry",
                        "retry",
                        "--max-retries",
                        "5"};
  const ProgramRun ended = runVideoid(capture(terms));
  ASSERT_EQ(ended.exitCode, 1) << ended.errors;
  const json result = json::parse(bytesOf(run / "result.json"));
  EXPECT_EQ(result["retention"], (json{{"days", 30}, {"until", "2026-03-31"}}));
  EXPECT_EQ(result["sha256"]["consent.json"], result["consent"]);
  EXPECT_EQ(std::distance(fs::directory_iterator(run), {}), 2) << "the result and its seal";
  const ProgramRun verified = verify();
  EXPECT_EQ(verified.exitCode, 0) << verified.errors;
  EXPECT_NE(verified.output.find("film.partial.mp4: removed on purpose"), std::string::npos);

  const fs::path runs = run.parent_path();
  const Arguments purge{"purge", runs, "--key", scratch / "key", "--date"};
  const auto purgeOn = [&](const char* day) {
    Arguments arguments = purge;
    arguments.push_back(day);
    return runVideoid(arguments);
  };
  EXPECT_EQ(purgeOn("2026-03-31").output, "no run is over\n");
  const ProgramRun gone = purgeOn("2026-04-01");
  EXPECT_EQ(gone.exitCode, 0) << gone.errors;
  EXPECT_FALSE(fs::exists(run));
  EXPECT_EQ(std::distance(fs::directory_iterator(runs), {}), 2) << "a receipt and its seal";
}

TEST_F(PrivacyTest, KeepsTheConsentOfARunThatWasKilled) {
  const Session session = Session::of("short");
  const ProgramRun killed =
      runDisturbed({"capture", "--reference", session.reference, "--text-file", session.text,
                    "--camera", session.camera, "--time", "real", "--key", scratch / "key",
                    "--consent", scratch / "consent", "--output", run},
                   run, "kill -9 $pid");
  ASSERT_NE(killed.exitCode, 0);
  EXPECT_NE(verify().output.find("consent.json: unchanged"), std::string::npos) << verify().output;
  writeBytes(run / "consent.json", R"({"given": true})");
  EXPECT_NE(verify().errors.find("consent.json"), std::string::npos);
}

TEST_F(PrivacyTest, HandsARunOnToItsRecipientAlone) {
  const fs::path sealed = fs::path(SESSIONS) / "sealed";
  const ProgramRun made = runProgram("age-keygen", {"--output", scratch / "identity"});
  ASSERT_EQ(made.exitCode, 0) << made.errors;
  const ProgramRun shown = runProgram("age-keygen", {"-y", scratch / "identity"});
  const std::string recipient = shown.output.substr(0, shown.output.find('\n'));
  const fs::path archive = scratch / "case.tar.age";
  const ProgramRun packed = runVideoid({"export", sealed, "--to", recipient, "--output", archive});
  ASSERT_EQ(packed.exitCode, 0) << packed.errors;
  EXPECT_EQ(bytesOf(archive).find("result.json"), std::string::npos) << "in the clear";
  const ProgramRun opened =
      runProgram("bash", {"-c", "age --decrypt --identity \"$1\" \"$2\" | tar -x -C \"$3\"", "bash",
                          scratch / "identity", archive, scratch.path()});
  ASSERT_EQ(opened.exitCode, 0) << opened.errors;
  for (const char* file : {"film.mp4", "result.json", "evidence.json"})
    EXPECT_EQ(bytesOf(scratch / "sealed" / file), bytesOf(sealed / file)) << file;

  const std::pair<Arguments, std::string> refused[] = {
      {{"export", sealed, "--to", recipient, "--output", archive}, "There is a file"},
      {{"export", sealed, "--to", recipient, "--output", sealed / "x.age"}, "lies within"},
      {{"export", sealed, "--to", "age1nobody", "--output", scratch / "x"}, "could not be made"},
      {{"export", sealed, "--to", "--help", "--output", scratch / "x"}, "recipient"},
      {{"export", scratch.path(), "--to", recipient}, "Name the folder of a run"},
  };
  for (const auto& [arguments, sentence] : refused) {
    const ProgramRun ended = runVideoid(arguments);
    EXPECT_EQ(ended.exitCode, 2) << sentence;
    EXPECT_NE(ended.errors.find(sentence), std::string::npos) << ended.errors;
  }
  EXPECT_FALSE(fs::exists(scratch / "x") || fs::exists(scratch / "x.new"));
}

TEST_F(PrivacyTest, TakesNoArchiveForWholeWhosePackerBrokeOff) {
  fs::create_directories(scratch / "programs");
  fs::create_directories(run);
  writeBytes(run / "result.json", "{}");
  writeBytes(scratch / "programs/tar", "#!/bin/sh\nkill -9 $$\n");
  fs::permissions(scratch / "programs/tar", fs::perms::owner_all);
  ASSERT_EQ(runProgram("age-keygen", {"--output", scratch / "identity"}).exitCode, 0);
  const std::string recipient = runProgram("age-keygen", {"-y", scratch / "identity"}).output;
  const ProgramRun packed =
      runProgram("sh", {"-c", "PATH=\"$1:$PATH\"; shift; exec \"$0\" \"$@\"", VIDEOID,
                        scratch / "programs", "export", run, "--to",
                        recipient.substr(0, recipient.find('\n')), "--output", scratch / "x"});
  EXPECT_EQ(packed.exitCode, 2);
  EXPECT_NE(packed.errors.find("could not be made (`tar` broke off)"), std::string::npos)
      << packed.errors;
  EXPECT_FALSE(fs::exists(scratch / "x") || fs::exists(scratch / "x.new"));
}

TEST_F(PrivacyTest, SaysWhenItMayNotEnterARecord) {
  fs::create_directories(scratch / "record");
  writeBytes(scratch / "record/events.jsonl", "");
  writeBytes(scratch / "record/result.json", "{}");
  for (const Arguments& arguments :
       {Arguments{"export", scratch / "record", "--to", "age1nobody", "--output", scratch / "x"},
        Arguments{"verify", scratch / "record"}}) {
    fs::permissions(scratch / "record", fs::perms::none);
    const ProgramRun refused = runAsPlainOwner(arguments);
    fs::permissions(scratch / "record", fs::perms::owner_all);
    EXPECT_EQ(refused.exitCode, 2) << arguments.front();
    EXPECT_NE(refused.errors.find("lack the right to enter it"), std::string::npos)
        << refused.errors;
  }
}

}  // namespace
}  // namespace corvana::tests
