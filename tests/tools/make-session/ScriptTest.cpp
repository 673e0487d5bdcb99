#include <gtest/gtest.h>

#include "Script.h"

namespace corvana::tests {
namespace {

const std::string kPerson = R"("text": "hello", "person": {"portrait": "portraits/person_a.jpg")";

TEST(Script, NamesWhatIsWrongWithIt) {
  const std::string good = kPerson + "}";
  for (const auto& [json, named] : std::initializer_list<std::pair<std::string, const char*>>{
           {"{", "not valid JSON"},
           {"[]", "object"},
           {"{" + good + R"(, "tempo": 3})", "tempo: there is no such key"},
           {R"({"person": {"portrait": "portraits/person_a.jpg"}})", "text: "},
           {R"({"text": "hello"})", "person.portrait: "},
           {R"({"text": "hello", "person": {"portrait": "nobody.jpg"}})", "nobody.jpg"},
           {"{" + kPerson + R"(, "faceWidth": 5}})", "person.faceWidth: "},
           {"{" + good + R"(, "seed": -1})", "seed: "},
           {"{" + good + R"(, "card": {"dateOfBirth": "1990-02-30"}})", "card.dateOfBirth: "},
           {"{" + good + R"(, "card": {"surname": "A\u0000B"}})", "card.surname: "},
           {"{" + good + R"(, "time": {"flip": 7.5}})", "time: "},
           {"{" + good + R"(, "faults": {"wrongBack": {"sex": "Q"}}})", "faults.wrongBack.sex: "},
           {"{" + good + R"(, "faults": {"wrongBack": 3}})", "faults.wrongBack must be"},
           {"{" + good + R"(, "faults": {"change": {"at": 3, "person": "x.jpg"}}})", "x.jpg"},
           {"{" + good + R"(, "presentation": {"kind": "mask"}})", "live, loop, print"},
       }) {
    const auto script = session::parseScript(json, SAMPLES);
    ASSERT_FALSE(script) << json;
    EXPECT_NE(script.error().find(named), std::string::npos) << script.error();
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
}  // namespace corvana::tests
