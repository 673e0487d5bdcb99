#include <gtest/gtest.h>

#include "app/endtoend/Program.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// The sealed record that `Sessions.sealed` made, and its key.
struct SealedRun {
  const fs::path folder = fs::path(SESSIONS) / "sealed";
  const fs::path key = fs::path(SESSIONS) / "sealed.key";
  const fs::path jwk = fs::path(SESSIONS) / "sealed.jwk";
  const fs::path pem = fs::path(SESSIONS) / "sealed.pem";
};

/// What is signed stands apart from the seal, so a forger would have to leave it as it was.
TEST(Seal, HoldsForAnotherLibraryAndForTheOpensslCommand) {
  const SealedRun run;
  const ScratchFolder scratch;
  const std::string script = SOURCES "/verify_seal.py";
  const ProgramRun verified =
      runProgram(PYTHON, {script, run.jwk, run.folder / "result.jws", run.folder / "result.json"});
  EXPECT_EQ(verified.exitCode, 0) << verified.errors;
  EXPECT_EQ(verified.output, json::parse(bytesOf(run.jwk))["kid"].get<std::string>() + "\n");
  writeBytes(scratch / "forged.json", bytesOf(run.folder / "result.json") + " ");
  EXPECT_NE(
      runProgram(PYTHON, {script, run.jwk, run.folder / "result.jws", scratch / "forged.json"})
          .exitCode,
      0);

  // As docs/evidence.md tells it.
  const ProgramRun byOpenssl = runProgram(
      "bash", {"-c",
               "cd \"$1\" && IFS=. read -r header _ signature <result.jws || true; "
               "{ printf '%s.' \"$header\"; cat result.json; } >\"$3/signed\" && "
               "printf '%s==' \"$signature\" | tr -- '-_' '+/' | base64 -d >\"$3/signature\" && "
               "openssl pkeyutl -verify -pubin -inkey \"$2\" -rawin -in \"$3/signed\" "
               "-sigfile \"$3/signature\"",
               "bash", run.folder, run.pem, scratch.path()});
  EXPECT_EQ(byOpenssl.exitCode, 0) << byOpenssl.output << byOpenssl.errors;
}

TEST(Seal, BindsTheSessionTheReferenceAndTheTextAndKeepsNamesOffTheConsole) {
  const SealedRun run;
  const ProgramRun verified = runVideoid({"verify", run.folder, "--key", run.pem});
  EXPECT_EQ(verified.exitCode, 0) << verified.errors;
  EXPECT_NE(verified.output.find("film.mp4: unchanged"), std::string::npos) << verified.output;
  const json result = json::parse(bytesOf(run.folder / "result.json"));
  EXPECT_EQ(result["session"], (json{{"id", "session 7"}, {"subject", "S-19"}}));
  EXPECT_EQ(result["reference"].size(), 4U);
  EXPECT_TRUE(result.contains("text"));
  EXPECT_FALSE(result.contains("clock")) << "time was the recording's";
  EXPECT_EQ(verified.output.find("S-19"), std::string::npos);

  const ScratchFolder scratch;
  ASSERT_EQ(runVideoid({"key", "new", "--key", scratch / "other"}).exitCode, 0);
  const ProgramRun other = runVideoid({"key", "show", "--pem", "--key", scratch / "other"});
  writeBytes(scratch / "other.pem", other.output);
  const ProgramRun foreign = runVideoid({"verify", run.folder, "--key", scratch / "other.pem"});
  EXPECT_EQ(foreign.exitCode, 1);
  EXPECT_NE(foreign.errors.find("is not trusted"), std::string::npos) << foreign.errors;
}

}  // namespace
}  // namespace corvana::tests
