#include <gtest/gtest.h>

#include "app/record/Files.h"
#include "app/seal/Forgery.h"
#include "app/seal/RecordCheck.h"
#include "app/seal/SmallRecord.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;

class SealedFilm : public testing::Test {
 protected:
  SealedFilm() { writeBytes(scratch_ / "public", key_.publicKey().pem()); }

  fs::path make(const SmallRecordPlan& plan, const std::string& name) const {
    makeSmallRecord(scratch_ / name, key_, plan);
    return scratch_ / name;
  }

  app::RecordReport check(const fs::path& folder) const {
    const auto keys = app::TrustedKeys::ofKey(scratch_ / "public");
    const auto report = app::checkRecord(folder, &*keys);
    return report ? *report : app::RecordReport{{{"folder", false, report.error().sentence}}};
  }

  /// All sentences, of what holds and what does not.
  static std::string textOf(const app::RecordReport& report) {
    std::string text;
    for (const auto& finding : report.findings)
      text += finding.part + ": " + finding.sentence + "\n";
    return text;
  }

  const ScratchFolder scratch_;
  const app::SigningKey key_ = *app::SigningKey::create(scratch_ / "key");
};

TEST_F(SealedFilm, EveryForgeryOfAnEndedRecordIsFound) {
  const fs::path honest = make({.session = "1"}, "honest");
  const fs::path other = make({.session = "2", .shade = 80}, "other");
  for (const fs::path& record : {honest, other})
    ASSERT_TRUE(check(record).holds()) << textOf(check(record));
  const fs::path forged = scratch_ / "forged";
  for (std::uint32_t number = 0; number < 300; ++number) {
    fs::copy(honest, forged);
    const Forgery forgery = forge(forged, other, number);
    EXPECT_FALSE(check(forged).holds()) << number << " " << forgery.kind << ": " << forgery.what;
    fs::remove_all(forged);
  }
}

TEST_F(SealedFilm, TheSamePlanGivesTheSameBytesAndARetryBeginsANewChain) {
  for (const SmallRecordPlan& plan :
       {SmallRecordPlan{.session = "1"}, SmallRecordPlan{.session = "1", .retried = true}}) {
    const fs::path one = make(plan, "one");
    const fs::path two = make(plan, "two");
    for (const char* file : {"film.mp4", "events.jsonl", "seal.jsonl", "result.json", "result.jws"})
      EXPECT_TRUE(bytesOf(one / file) == bytesOf(two / file)) << file;
    EXPECT_TRUE(check(one).holds()) << textOf(check(one));
    EXPECT_EQ(bytesOf(one / "seal.jsonl").find("\"chain\":2") != std::string::npos, plan.retried);
    fs::remove_all(one);
    fs::remove_all(two);
  }
}

TEST_F(SealedFilm, TheRecordOfAKilledRunIsWholeToAMomentAndNoForgeryPasses) {
  const fs::path honest = make({.session = "1", .frames = 150, .ends = false}, "honest");
  const fs::path other = make({.session = "2", .frames = 150, .shade = 80, .ends = false}, "other");
  const std::string wholeTo = "The run never ended: it is whole to ";
  const auto secondsIn = [&](const app::RecordReport& report) {
    const std::string& last = report.findings.back().sentence;
    EXPECT_TRUE(last.starts_with(wholeTo)) << last;
    return std::stod(last.substr(std::min(wholeTo.size(), last.size())));
  };
  const auto report = check(honest);
  EXPECT_FALSE(report.holds());
  const double whole = secondsIn(report);
  EXPECT_GE(whole, 3.5);
  EXPECT_EQ(std::ranges::count(report.findings, false, &app::RecordFinding::holds), 1)
      << textOf(report);

  const auto forgeAndCheck = [&](const std::function<void(const fs::path&)>& forgery) {
    fs::copy(honest, scratch_ / "forged");
    forgery(scratch_ / "forged");
    auto found = check(scratch_ / "forged");
    fs::remove_all(scratch_ / "forged");
    return found;
  };
  // A cut is honest, but earlier.
  const auto cut = forgeAndCheck([](const fs::path& run) {
    fs::resize_file(run / "film.partial.mp4", fs::file_size(run / "film.partial.mp4") / 2);
  });
  EXPECT_LT(secondsIn(cut), whole);
  EXPECT_GT(secondsIn(cut), 0.5);

  const auto replaceIn = [](const fs::path& file, std::size_t at) {
    std::string bytes = bytesOf(file);
    bytes[at] = static_cast<char>(bytes[at] ^ 1);
    writeBytes(file, bytes);
  };
  const struct {
    std::function<void(const fs::path&)> forgery;
    const char* sentence;
  } cases[] = {
      {[&](const fs::path& run) {
         const std::string film = bytesOf(run / "film.partial.mp4");
         replaceIn(run / "film.partial.mp4", film.find("mdat", film.size() / 3) + 400);
       },
       "is not the film that was sealed"},
      {[&](const fs::path& run) {
         fs::copy(other / "film.partial.mp4", run, fs::copy_options::overwrite_existing);
       },
       "is not the film that was sealed"},
      {[&](const fs::path& run) {
         fs::copy(other / "events.jsonl", run, fs::copy_options::overwrite_existing);
         replaceIn(run / "events.jsonl", 8);
       },
       "is not the file that was sealed"},
      {[&](const fs::path& run) { replaceIn(run / "seal.jsonl", 200); }, "breaks: line 1"},
      {[&](const fs::path& run) {
         const std::string seal = bytesOf(run / "seal.jsonl");
         const auto third = seal.find("{\"previous\"", seal.find("{\"previous\"", 1) + 1);
         const auto fourth = seal.find("{\"previous\"", third + 1);
         writeBytes(run / "seal.jsonl", seal.substr(0, third) + seal.substr(fourth));
       },
       "does not follow the one before it"},
      {[](const fs::path& run) { writeBytes(run / "seal.jsonl", ""); }, "No film was sealed"},
      {[](const fs::path& run) { fs::remove(run / "film.partial.mp4"); }, "There is no film"},
      {[&](const fs::path& run) { fs::copy(other / "film.partial.mp4", run / "film.mp4"); },
       "is not the film that was sealed"}};
  for (const auto& c : cases) {
    const std::string found = textOf(forgeAndCheck(c.forgery));
    EXPECT_NE(found.find(c.sentence), std::string::npos) << c.sentence << "\n" << found;
  }
}

TEST_F(SealedFilm, AnEndedRecordWithoutItsResultIsNotTakenForAKilledRun) {
  const fs::path run = make({.session = "1"}, "run");
  fs::remove(run / "result.json");
  fs::remove(run / "result.jws");
  const auto report = check(run);
  EXPECT_FALSE(report.holds());
  EXPECT_NE(textOf(report).find("but there is no result"), std::string::npos) << textOf(report);
}

}  // namespace
}  // namespace corvana::tests
