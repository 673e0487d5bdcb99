#include <gtest/gtest.h>

#include "app/recheck/RecordedRun.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

using nlohmann::json;

/// The folder of an ended run, whose film nobody looks into.
class RecordedRunTest : public testing::Test {
 protected:
  RecordedRunTest() {
    writeBytes(scratch / "events.jsonl",
               "{\"t\":0.4,\"event\":\"mode\",\"name\":\"selfieCapture\"}\n");
    writeBytes(scratch / "film.mp4", "film");
  }
  platform::Expected<app::RecordedRun> read(const json& more) {
    json result{{"result", json::object()}, {"options", json::object()}};
    result.update(more);
    writeBytes(scratch / "result.json", result.dump());
    return app::readRecordedRun(scratch.path(), nullptr, nullptr);
  }
  ScratchFolder scratch;
};

TEST_F(RecordedRunTest, KnowsByWhatItWasJudgedAndWhichTextWasToBeRead) {
  writeBytes(scratch / "evidence.json", R"({"text": "some words"})");
  const auto run = read(
      {{"date", "2026-03-01"},
       {"screen",
        {{"size", {540, 960}}, {"face", {90, 150, 360, 480}}, {"card", {30, 600, 480, 303}}}}});
  ASSERT_TRUE(run) << run.error().sentence;
  EXPECT_FALSE(run->isTrusted) << "nobody vouches for it";
  EXPECT_EQ(run->text, "some words");
  ASSERT_TRUE(run->date());
  EXPECT_EQ(engine::isoDate(*run->date()), "2026-03-01");
  ASSERT_TRUE(run->places());
  EXPECT_EQ(run->places()->screen, (platform::CGSize{540, 960}));
  EXPECT_EQ(run->places()->card, (platform::CGRect{30, 600, 480, 303}));
}

TEST_F(RecordedRunTest, TakesWhatHasAnotherShapeForMissing) {
  writeBytes(scratch / "evidence.json", R"({"text": ["some", "words"]})");
  for (const json& screen :
       {json(7), json{{"size", {540, 960}}},
        json{{"size", {540, 960}}, {"face", {1, 2, 3}}, {"card", {1, 2, 3, 4}}},
        json{{"size", {"wide", 1}}, {"face", {1, 2, 3, 4}}, {"card", {1, 2, 3, 4}}}}) {
    const auto run = read({{"date", {1}}, {"text", 3}, {"screen", screen}});
    ASSERT_TRUE(run) << run.error().sentence;
    EXPECT_FALSE(run->places()) << screen;
    EXPECT_FALSE(run->date());
    EXPECT_FALSE(run->text);
    EXPECT_EQ(run->sum("text"), "");
  }
}

}  // namespace
}  // namespace corvana::tests
