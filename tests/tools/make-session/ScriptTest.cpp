#include <gtest/gtest.h>

#include "Script.h"

namespace {

const std::string kPerson = R"("text": "hello", "person": {"portrait": "portraits/person_a.jpg")";

TEST(Script, NamesWhatIsWrongWithIt) {
  struct Case {
    std::string json;
    const char* named;
  };
  const std::string good = kPerson + "}";
  for (const Case& c : {
           Case{"{", "valid JSON"},
           Case{"[]", "object"},
           Case{"{" + good + R"(, "tempo": 3})", "\"tempo\" is not a key"},
           Case{R"({"person": {"portrait": "portraits/person_a.jpg"}})", "\"text\""},
           Case{R"({"text": "hello"})", "\"person.portrait\""},
           Case{R"({"text": "hello", "person": {"portrait": "nobody.jpg"}})", "nobody.jpg"},
           Case{"{" + kPerson + R"(, "faceWidth": 5}})", "\"person.faceWidth\""},
           Case{"{" + good + R"(, "seed": -1})", "\"seed\""},
           Case{"{" + good + R"(, "card": {"dateOfBirth": "1990-02-30"}})", "\"card.dateOfBirth\""},
           Case{"{" + good + R"(, "card": {"surname": "A\u0000B"}})", "\"card.surname\""},
           Case{"{" + good + R"(, "time": {"flip": 7.5}})", "\"time\""},
           Case{"{" + good + R"(, "faults": {"wrongBack": {"sex": "Q"}}})",
                "\"faults.wrongBack.sex\""},
           Case{"{" + good + R"(, "faults": {"wrongBack": 3}})", "\"faults.wrongBack\""},
       }) {
    const auto script = session::parseScript(c.json, SAMPLES);
    ASSERT_FALSE(script) << c.json;
    EXPECT_NE(script.error().find(c.named), std::string::npos) << script.error();
  }
}

TEST(Script, FillsInWhatIsLeftOut) {
  const auto script = session::parseScript(
      "{" + kPerson + R"(}, "time": {"handOver": 22}, "voice": {"engine": "espeak-ng"},
       "card": {"surname": "MARTIN"}, "faults": {"wrongBack": {"givenNames": "OSCAR"}}})",
      SAMPLES);
  ASSERT_TRUE(script) << script.error();
  EXPECT_EQ(script->time.speechAt, 25.0);
  EXPECT_EQ(script->voice.name, "en-us");
  EXPECT_EQ(script->card.photo, script->person.portrait);
  // Another back is the card's own but for what the fault names.
  EXPECT_EQ(script->faults.wrongBack->surname, "MARTIN");
  EXPECT_EQ(script->faults.wrongBack->givenNames, "OSCAR");
}

}  // namespace
