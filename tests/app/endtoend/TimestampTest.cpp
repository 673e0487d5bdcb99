#include <gtest/gtest.h>

#include "app/endtoend/Program.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using Arguments = std::vector<std::string>;

/// A copy of the sealed record, and an authority that stamps.
class Timestamp : public testing::Test {
 protected:
  Timestamp() {
    fs::copy(fs::path(SESSIONS) / "sealed", run_);
    tell({"make", scratch_ / "authority"});
  }

  void tell(Arguments words) const {
    words.insert(words.begin(), SOURCES "/authority");
    const ProgramRun told = runProgram("sh", words);
    EXPECT_EQ(told.exitCode, 0) << told.errors;
  }

  /// Its answer to that request.
  fs::path answerTo(const fs::path& request, const std::string& authority = "authority") const {
    tell({"answer", scratch_ / authority, request, scratch_ / "answer"});
    return scratch_ / "answer";
  }

  ProgramRun stamp(Arguments more = {}) const {
    more.insert(more.begin(), {"timestamp", run_});
    return runVideoid(more);
  }

  ProgramRun verify(Arguments more = {}) const {
    more.insert(more.begin(), {"verify", run_});
    return runVideoid(more);
  }

  fs::path keysRevokedAt(const char* time) const {
    json jwk = json::parse(bytesOf(fs::path(SESSIONS) / "sealed.jwk"));
    jwk["revoked"] = time;
    writeBytes(scratch_ / "keys", json{{"keys", {jwk}}}.dump());
    return scratch_ / "keys";
  }

  const ScratchFolder scratch_;
  const fs::path run_ = scratch_ / "run";
  const fs::path request_ = scratch_ / "run.tsq";
  const fs::path ca_ = scratch_ / "authority/ca.pem";
};

TEST_F(Timestamp, ARecordIsStampedAndStampedAgainAndOutlivesItsKey) {
  const ProgramRun within = stamp({"--request", run_ / "run.tsq"});
  EXPECT_EQ(within.exitCode, 2);
  EXPECT_NE(within.errors.find("lies within"), std::string::npos) << within.errors;
  for (const char* name : {"stamp-1.tsr", "stamp-2.tsr"}) {
    ASSERT_EQ(stamp().exitCode, 0);
    EXPECT_EQ(stamp().exitCode, 2) << "a request waits for its answer";
    const ProgramRun kept = stamp({"--answer", answerTo(request_), "--stamp-ca", ca_});
    ASSERT_EQ(kept.exitCode, 0) << kept.errors;
    EXPECT_TRUE(kept.output.starts_with(name)) << kept.output;
    EXPECT_FALSE(fs::exists(request_));
  }
  const fs::path revokedLater = keysRevokedAt("2100-01-01T00:00:00Z");
  const ProgramRun verified = verify({"--keys", revokedLater, "--stamp-ca", ca_});
  EXPECT_EQ(verified.exitCode, 0) << verified.errors;
  EXPECT_NE(verified.output.find("stamp-2.tsr: the seal was there at 20"), std::string::npos);
  const ProgramRun untrusted = verify({"--keys", revokedLater});
  EXPECT_EQ(untrusted.exitCode, 1) << "nobody vouches for the time";
  EXPECT_NE(untrusted.output.find("--stamp-ca"), std::string::npos) << untrusted.output;
  const fs::path revokedBefore = keysRevokedAt("2020-01-01T00:00:00Z");
  EXPECT_EQ(verify({"--keys", revokedBefore, "--stamp-ca", ca_}).exitCode, 1);

  // Without this program.
  const ProgramRun byOpenssl = runProgram("openssl", {"ts", "-verify", "-data", run_ / "result.jws",
                                                      "-in", run_ / "stamp-1.tsr", "-CAfile", ca_});
  EXPECT_EQ(byOpenssl.exitCode, 0) << byOpenssl.errors;
}

TEST_F(Timestamp, AnAnswerThatIsNoneForThisRecordIsRefusedAndTheRecordStaysAsItIs) {
  ASSERT_EQ(stamp().exitCode, 0);
  const std::string request = bytesOf(request_);
  writeBytes(scratch_ / "other", "other bytes");
  const auto query = [&](const fs::path& data) {
    const ProgramRun made = runProgram(
        "openssl", {"ts", "-query", "-data", data, "-sha256", "-cert", "-out", scratch_ / "query"});
    EXPECT_EQ(made.exitCode, 0) << made.errors;
    return scratch_ / "query";
  };
  tell({"make", scratch_ / "stranger"});
  const std::string good = bytesOf(answerTo(request_));
  std::string padded = good + '\0';
  const struct {
    std::string answer;
    const char* sentence;
  } cases[] = {{"no answer", "is no answer of a time stamp authority"},
               {padded, "is no answer of a time stamp authority"},
               {good.substr(0, good.size() / 2), "is no answer of a time stamp authority"},
               {bytesOf(answerTo(query(scratch_ / "other"))), "is for other bytes"},
               {bytesOf(answerTo(query(run_ / "result.jws"))), "its nonce is another"},
               {bytesOf(answerTo(request_, "stranger")), "is not signed by a trusted authority"}};
  for (const auto& c : cases) {
    writeBytes(scratch_ / "answer", c.answer);
    const ProgramRun refused = stamp({"--answer", scratch_ / "answer", "--stamp-ca", ca_});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(refused.errors.find(c.sentence), std::string::npos) << refused.errors;
    EXPECT_FALSE(fs::exists(run_ / "stamp-1.tsr"));
    EXPECT_EQ(bytesOf(request_), request);
  }
  tell({"outdate", scratch_ / "authority"});
  const ProgramRun outdated = stamp({"--answer", answerTo(request_), "--stamp-ca", ca_});
  EXPECT_EQ(outdated.exitCode, 1) << "its certificate was not valid at the time it names";
}

TEST_F(Timestamp, AStampThatWasChangedOrIsAnothersIsFound) {
  ASSERT_EQ(stamp().exitCode, 0);
  ASSERT_EQ(stamp({"--answer", answerTo(request_)}).exitCode, 0);
  const std::string answer = bytesOf(run_ / "stamp-1.tsr");
  const auto holds = [&] {
    return verify({"--key", fs::path(SESSIONS) / "sealed.pem", "--stamp-ca", ca_}).exitCode == 0;
  };
  ASSERT_TRUE(holds());
  // In its status, its stamp and its signature.
  for (const std::size_t at : {std::size_t{8}, std::size_t{90}, answer.size() - 40}) {
    std::string changed = answer;
    changed[at] = static_cast<char>(changed[at] ^ 1);
    writeBytes(run_ / "stamp-1.tsr", changed);
    EXPECT_FALSE(holds()) << at;
  }
  writeBytes(run_ / "stamp-1.tsr", answer);
  fs::remove(run_ / "stamp-1.tsq");
  EXPECT_FALSE(holds()) << "the nonce can't be checked";
}

TEST_F(Timestamp, AnAuthorityIsAskedOverTheNetwork) {
  const auto ask = [&](const std::string& address, const Arguments& more = {}) {
    Arguments arguments{SOURCES "/stamp_server.py",
                        scratch_ / "authority",
                        VIDEOID,
                        "timestamp",
                        run_,
                        "--url",
                        address};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runProgram(PYTHON, arguments);
  };
  const std::string here = "http://127.0.0.1:PORT/";
  const struct {
    std::string address;
    Arguments more;
    int exitCode;
    const char* sentence;
  } refused[] = {
      {here + "busy", {}, 2, "authority 127.0.0.1 refused the request (HTTP status 503)"},
      {here + "moved", {}, 2, "refused the request (HTTP status 302)"},
      {here + "page", {}, 2, "answered with something else than a time stamp"},
      {here + "huge", {}, 2, "more bytes than a time stamp has"},
      {here + "endless", {}, 2, "more bytes than a time stamp has"},
      {here + "silent", {"--wait", "1"}, 2, "did not answer within 1 s"},
      {here + "nonsense", {}, 1, "is no answer of a time stamp authority"},
      {here + "stamp", {"--answer", "-"}, 2, "--answer"},
      {"http://127.0.0.1:1/", {}, 2, "can't be reached"},
      {"file:///etc/passwd", {}, 2, "is no address of a time stamp authority"},
      {"nonsense", {}, 2, "is no address of a time stamp authority"},
  };
  for (const auto& c : refused) {
    const ProgramRun asked = ask(c.address, c.more);
    EXPECT_EQ(asked.exitCode, c.exitCode) << c.address;
    EXPECT_NE(asked.errors.find(c.sentence), std::string::npos) << c.address << asked.errors;
    EXPECT_FALSE(fs::exists(run_ / "stamp-1.tsr"));
  }
  const ProgramRun stamped = ask(here + "stamp", {"--stamp-ca", ca_});
  EXPECT_EQ(stamped.exitCode, 0) << stamped.errors;
  EXPECT_NE(stamped.output.find("says a trusted authority"), std::string::npos) << stamped.output;
  EXPECT_EQ(verify({"--stamp-ca", ca_}).exitCode, 0);
}

TEST_F(Timestamp, WhatHasNoSealCannotBeStamped) {
  fs::remove(run_ / "result.jws");
  const ProgramRun refused = stamp();
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_NE(refused.errors.find("holds no seal"), std::string::npos) << refused.errors;
}

}  // namespace
}  // namespace corvana::tests
