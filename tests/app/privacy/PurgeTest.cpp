#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "app/keys/Jws.h"
#include "app/keys/Sha256.h"
#include "app/privacy/Purge.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

engine::CalendarDate day(const char* iso) {
  return *engine::calendarDate(iso);
}

class PurgeTest : public testing::Test {
 protected:
  /// A record of which "Anna" is the person.
  fs::path addRun(const std::string& name, const json& until) {
    const fs::path run = runs / name;
    fs::create_directory(run);
    const json result{{"session", {{"subject", "Anna " + name}}},
                      {"retention", {{"until", until}}},
                      {"sha256", {{"film.mp4", "x"}, {"film.run1.mp4", "x"}, {"../key", "x"}}}};
    writeBytes(run / "result.json", result.dump());
    for (const char* file : {"film.mp4", "film.run1.mp4", "events.jsonl", "evidence.json",
                             "selfie.png", "consent.json", "stamp-1.tsq", "stamp-1.tsr"})
      writeBytes(run / file, "Anna");
    return run;
  }

  std::vector<app::OverdueRun> overdue(const app::PurgeRules& rules) {
    auto found = app::findOverdue(runs.path(), rules);
    EXPECT_TRUE(found);
    unclear = found->unclear;
    return found->runs;
  }

  json purgeAll(std::vector<app::OverdueRun>& found) {
    const auto receipt = app::purge(runs.path(), found, {day("2026-03-01"), {}}, key,
                                    *app::parseUtc("2026-03-01T10:00:00Z"));
    EXPECT_TRUE(receipt) << receipt.error().sentence;
    if (!receipt) return {};
    const std::string bytes = bytesOf(*receipt);
    EXPECT_EQ(bytes.find("Anna"), std::string::npos) << "a receipt names nobody";
    EXPECT_EQ(bytes.find("run-"), std::string::npos) << "nor a folder, which may be named so";
    writeBytes(keys / "public", key.publicKey().pem());
    const auto trusted = app::TrustedKeys::ofKey(keys / "public");
    fs::path seal = *receipt;
    EXPECT_TRUE(app::verifyDetached(bytesOf(seal.replace_extension(".jws")), bytes, *trusted));
    return json::parse(bytes);
  }

  ScratchFolder keys;
  ScratchFolder runs;
  std::vector<fs::path> unclear;  ///< of the last look
  const app::SigningKey key = *app::SigningKey::create(keys / "key");
};

TEST_F(PurgeTest, RemovesWhatIsOverAndLeavesAReceiptThatNamesNobody) {
  const fs::path over = addRun("run-over", "2026-02-28");
  addRun("run-last-day", "2026-03-01");
  addRun("run-without-end", nullptr);
  addRun("run-strange", 5);
  fs::create_directory(runs / "run-no-record");
  writeBytes(runs / "key", "not a run's");
  const std::string record = app::sha256Of(bytesOf(over / "result.json"));

  auto found = overdue({day("2026-03-01"), {}});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found.front().folder, over);
  const json receipt = purgeAll(found);
  EXPECT_EQ(receipt["done"], true);
  EXPECT_EQ(receipt["runs"],
            json::array({{{"record", record}, {"until", "2026-02-28"}, {"removed", true}}}));
  EXPECT_FALSE(fs::exists(over));
  for (const char* name : {"run-last-day", "run-without-end", "run-strange"})
    EXPECT_TRUE(fs::exists(runs / name / "film.mp4")) << name;
  EXPECT_TRUE(fs::exists(runs / "key")) << "a record that names it";

  auto again = overdue({day("2026-03-03"), {}});
  purgeAll(again);
  EXPECT_EQ(std::distance(fs::directory_iterator(runs.path()), {}), 3 + 1 + 4)
      << "no receipt is replaced";
}

TEST_F(PurgeTest, LeavesWhatIsNoPartOfARecordAndSaysSo) {
  const fs::path over = addRun("run-over", "2026-02-28");
  writeBytes(over / "notes.txt", "mine");
  fs::create_directory(over / "film.partial.mp4");
  auto found = overdue({day("2026-03-01"), {}});
  const json receipt = purgeAll(found);
  EXPECT_EQ(receipt["runs"][0]["removed"], false);
  EXPECT_EQ(bytesOf(over / "notes.txt"), "mine");
  EXPECT_FALSE(fs::exists(over / "film.mp4")) << "the person's pictures are gone";
  EXPECT_TRUE(fs::exists(over / "result.json")) << "so that the next purge finds it again";
}

TEST_F(PurgeTest, NamesRunsThatItCannotJudge) {
  writeBytes(addRun("run-broken", "2026-02-28") / "result.json", "{\"retention\": ");
  const fs::path over = addRun("run-over", "2026-02-28");
  const auto found = overdue({day("2026-03-01"), {}});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found.front().folder, over);
  EXPECT_EQ(unclear, std::vector<fs::path>{runs / "run-broken"});
}

TEST_F(PurgeTest, FollowsNoLinkOutOfTheFolder) {
  const ScratchFolder elsewhere;
  const fs::path over = addRun("run-over", "2026-02-28");
  fs::rename(over, elsewhere / "run");
  fs::create_directory_symlink(elsewhere / "run", over);
  EXPECT_TRUE(overdue({day("2026-03-01"), {}}).empty());
}

TEST_F(PurgeTest, TakesRunsThatNeverEndedOnlyWhenTheyHaveRested) {
  const fs::path killed = addRun("run-killed", nullptr);
  fs::remove(killed / "result.json");
  EXPECT_TRUE(overdue({day("2026-03-01"), 2}).empty()) << "it may still be recording";
  for (const auto& entry : fs::directory_iterator(killed)) {
    fs::last_write_time(entry.path(),
                        fs::file_time_type::clock::now() - std::chrono::hours(24 * 3));
  }
  EXPECT_TRUE(overdue({day("2026-03-01"), {}}).empty()) << "nobody asked for it";
  auto found = overdue({day("2026-03-01"), 2});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(purgeAll(found)["runs"][0]["until"], nullptr);
  EXPECT_FALSE(fs::exists(killed));
}

TEST_F(PurgeTest, RemovesNothingWhereNoReceiptCanBeWritten) {
  const fs::path over = addRun("run-over", "2026-02-28");
  auto found = overdue({day("2026-03-01"), {}});
  const auto receipt = app::purge(runs / "no-such-folder", found, {day("2026-03-01"), {}}, key, {});
  EXPECT_FALSE(receipt);
  EXPECT_TRUE(fs::exists(over / "film.mp4"));
  EXPECT_FALSE(app::findOverdue(runs / "no-such-folder", {day("2026-03-01"), {}}));
}

}  // namespace
}  // namespace corvana::tests
