#include <gtest/gtest.h>

#include "app/recheck/Judgements.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

using app::Judgement;
using app::RunEvents;

constexpr const char* kFirstAttempt = R"({"t":0.4,"event":"mode","name":"selfieCapture"}
{"t":3,"event":"decision","name":"selfieFace","value":0.9,"threshold":0.44,"passed":false}
{"t":9,"event":"state","name":"selfieTimedOut"}
{"t":9,"event":"call","name":"stopVideoWriter"}
{"t":9.4,"event":"retry","text":"Your face could not be captured. Please try again"}
)";
constexpr const char* kSecondAttempt = R"({"t":11,"event":"call","name":"retry"}
{"t":11,"event":"mode","name":"selfieCapture"}
{"t":12,"event":"liveness","name":"living","seconds":3.0,"evidence":"blink"}
{"t":12,"event":"state","name":"selfieSuccess"}
{"t":12,"event":"decision","name":"selfieFace","value":0.5,"threshold":0.44,"passed":false}
{"t":13,"event":"decision","name":"selfieFace","value":0.1,"threshold":0.44,"passed":true}
{"t":13,"event":"mode","name":"idCapture"}
{"t":14,"event":"sign","name":"samePerson","value":0.03,"threshold":0.42,"seen":true}
{"t":14,"event":"state","name":"detectingBox"}
{"t":15,"event":"decision","name":"backMrz","passed":true}
{"t":16,"event":"mode","name":"readingText"}
{"t":20,"event":"decision","name":"spokenWords","value":0.9,"threshold":0.6,"passed":true}
{"t":20,"event":"call","name":"stopVideoWriter"}
)";

class RunEventsTest : public testing::Test {
 protected:
  platform::Expected<RunEvents> read(const std::string& lines) {
    writeBytes(scratch / "events.jsonl", lines);
    return app::readRunEvents(scratch / "events.jsonl");
  }
  ScratchFolder scratch;
};

TEST_F(RunEventsTest, TellsOfTheLastAttemptWhatWasFoundLastInEachPhase) {
  const auto events = read(std::string(kFirstAttempt) + kSecondAttempt);
  ASSERT_TRUE(events) << events.error().sentence;
  EXPECT_EQ(events->earlierAttempts, 1);
  EXPECT_EQ(events->start(), 11);
  EXPECT_EQ(app::endOfReading(*events), 9);
  EXPECT_EQ(app::endingOf(*events, true), "result");
  std::vector<std::string> found;
  for (const Judgement& judgement :
       app::judgementsOf(*events, {{"selfieCapture.timeOutSeconds", 8}})) {
    found.push_back(judgement.phase + " " + judgement.name + " " + judgement.word);
    if (judgement.name == "selfieFace") {
      EXPECT_EQ(judgement.value, 0.1);
    }
    if (judgement.name == "samePerson") {
      EXPECT_EQ(judgement.passed, true);
    }
    if (judgement.name != "time" || judgement.phase != "selfieCapture") continue;
    EXPECT_EQ(judgement.value, 2);
    EXPECT_EQ(judgement.limit, 8);
  }
  EXPECT_EQ(found, (std::vector<std::string>{
                       "selfieCapture liveness living", "selfieCapture state selfieSuccess",
                       "selfieCapture selfieFace ", "selfieCapture time ", "idCapture samePerson ",
                       "idCapture backMrz ", "idCapture time ", "readingText spokenWords "}));
}

TEST_F(RunEventsTest, SaysWhyAnAttemptEndedOnARetryScreen) {
  const std::string began = "{\"t\":0,\"event\":\"mode\",\"name\":\"selfieCapture\"}\n";
  const std::string retry = "{\"t\":9,\"event\":\"retry\",\"text\":\"Again?\"}\n";
  const struct {
    std::string lines;
    const char* ending;
  } cases[] = {
      {kFirstAttempt, "retry after selfieTimedOut"},
      {began + R"({"t":8,"event":"liveFace","name":"lost","cause":"anotherPerson"})" + "\n" + retry,
       "retry after the live face was lost"},
      {began + R"({"t":8,"event":"decision","name":"spokenWords","value":0.1,"passed":false})" +
           "\n" + retry,
       "retry after spokenWords"},
      {began, ""},
  };
  for (const auto& c : cases) {
    const auto events = read(c.lines);
    ASSERT_TRUE(events) << events.error().sentence;
    EXPECT_EQ(app::endingOf(*events, false), c.ending);
  }
}

TEST_F(RunEventsTest, RefusesWhatIsNoLogOfARunWithOneSentence) {
  const struct {
    const char* lines;
    const char* sentence;
  } cases[] = {{"", "no identification that began"},
               {"{\"t\":0,\"event\":\"devices\"}\n", "no identification that began"},
               {"{\"t\":0,\"event\":\"mode\"}\n\n", "Line 2 of"},
               {"{\"t\":\"soon\",\"event\":\"mode\"}\n", "Line 1 of"},
               {"[1, 2]\n", "Line 1 of"},
               {"{\"t\":1,\"event\":{}}\n", "Line 1 of"}};
  for (const auto& c : cases) {
    const auto events = read(c.lines);
    ASSERT_FALSE(events) << c.lines;
    EXPECT_NE(events.error().sentence.find(c.sentence), std::string::npos)
        << events.error().sentence;
  }
  EXPECT_FALSE(app::readRunEvents(scratch / "none.jsonl"));
}

}  // namespace
}  // namespace corvana::tests
