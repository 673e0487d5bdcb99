#include <functional>

#include <gtest/gtest.h>

#include "app/record/RunRecord.h"
#include "app/seal/RecordCheck.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// A kiosk with its key, and the records of runs that ended early.
class RecordCheck : public testing::Test {
 protected:
  RecordCheck() { writeBytes(scratch_ / "public", key_.publicKey().pem()); }

  app::RunRecord record() const {
    return {.outcome = tl::unexpected(corvana::IDError(corvana::IDError::Strings::canceled)),
            .devices = {{"Camera", false}, {}},
            .reference = json::object(),
            .key = key_};
  }

  fs::path write(const app::RunRecord& record, const std::string& name) const {
    const fs::path folder = scratch_ / name;
    fs::create_directories(folder);
    writeBytes(folder / "events.jsonl", "{\"t\":0,\"event\":\"" + name + "\"}\n");
    EXPECT_FALSE(app::writeRunRecord(record, {}, folder).fault);
    return folder;
  }

  app::RecordReport check(const fs::path& folder) const {
    const auto keys = app::TrustedKeys::ofKey(scratch_ / "public");
    const auto report = app::checkRecord(folder, &*keys);
    return report ? *report : app::RecordReport{{{"folder", false, report.error().sentence}}};
  }

  static std::string faultOf(const app::RecordReport& report) {
    for (const auto& finding : report.findings) {
      if (!finding.holds) return finding.sentence;
    }
    return {};
  }

  const ScratchFolder scratch_;
  const app::SigningKey key_ = *app::SigningKey::create(scratch_ / "key");
};

TEST_F(RecordCheck, EachForgeryIsNamedInASentence) {
  const fs::path other = write(record(), "other");
  const struct {
    std::function<void(const fs::path&)> forge;
    const char* sentence;
  } cases[] = {
      {[](const fs::path& run) { writeBytes(run / "events.jsonl", "another story\n"); },
       "\"events.jsonl\" is not the file that the run left"},
      {[](const fs::path& run) {
         // Sums are recomputed easily.
         writeBytes(run / "events.jsonl", "another story\n");
         json result = json::parse(bytesOf(run / "result.json"));
         result["sha256"]["events.jsonl"] = *app::sha256(run / "events.jsonl");
         writeBytes(run / "result.json", result.dump(2) + "\n");
       },
       "does not fit what it seals"},
      {[&](const fs::path& run) {
         fs::copy(other / "events.jsonl", run, fs::copy_options::overwrite_existing);
         fs::copy(other / "result.json", run, fs::copy_options::overwrite_existing);
       },
       "does not fit what it seals"},
      {[](const fs::path& run) { fs::remove(run / "result.jws"); }, "nobody vouches"},
      {[](const fs::path& run) { fs::remove(run / "events.jsonl"); }, "There is no file"},
      {[](const fs::path& run) { writeBytes(run / "film.run1.mp4", "another film"); },
       "\"film.run1.mp4\" is no part of the record"},
      {[](const fs::path& run) { writeBytes(run / "result.json", "{"); }, "not valid JSON"},
      {[](const fs::path& run) { writeBytes(run / "result.json", "[]"); }, "does not fit"},
      {[](const fs::path& run) { fs::remove(run / "result.json"); }, "holds no result.json"},
  };
  for (const auto& c : cases) {
    const fs::path run = write(record(), "run");
    ASSERT_EQ(faultOf(check(run)), "");
    c.forge(run);
    const auto report = check(run);
    EXPECT_FALSE(report.holds());
    EXPECT_NE(faultOf(report).find(c.sentence), std::string::npos) << faultOf(report);
    fs::remove_all(run);
  }
}

TEST_F(RecordCheck, WithoutAKeyItSaysThatNobodyVouches) {
  app::RunRecord unsealed = record();
  unsealed.key.reset();
  for (const fs::path& run : {write(record(), "sealed"), write(unsealed, "unsealed")}) {
    const auto report = app::checkRecord(run, nullptr);
    ASSERT_TRUE(report);
    EXPECT_TRUE(report->holds());
    EXPECT_NE(report->findings.front().sentence.find("nobody vouches"), std::string::npos);
  }
  EXPECT_FALSE(check(scratch_ / "unsealed").holds()) << "somebody was to vouch";
}

TEST_F(RecordCheck, TheRecordsOwnClockDecidesAboutTheTimesOfAKey) {
  app::RunRecord timed = record();
  timed.started = timed.ended = app::ClockReading{*app::parseUtc("2026-02-01T10:00:00Z"), true};
  const fs::path run = write(timed, "run");
  json jwk = key_.publicKey().jwk();
  for (const auto& [until, holds] :
       {std::pair{"2026-02-01T10:00:00Z", true}, {"2026-02-01T09:59:59Z", false}}) {
    jwk["validUntil"] = until;
    writeBytes(scratch_ / "keys", json{{"keys", {jwk}}}.dump());
    const auto keys = app::TrustedKeys::ofSet(scratch_ / "keys");
    EXPECT_EQ(app::checkRecord(run, &*keys)->holds(), holds);
  }
}

}  // namespace
}  // namespace corvana::tests
