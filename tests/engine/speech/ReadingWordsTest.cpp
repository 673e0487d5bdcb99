#include <algorithm>

#include <gtest/gtest.h>

#include "engine/speech/Pronouncer.h"
#include "engine/speech/ReadingText.h"

namespace corvana::tests {
namespace {

using engine::Pronouncer;

std::string spellings(const std::string& text) {
  std::string joined;
  for (const engine::ReadingWord& word : engine::readingWords(text)) {
    if (!joined.empty()) joined += '|';
    joined += word.spelling;
  }
  return joined;
}

TEST(ReadingWords, KeepTheTextsSpellingWithoutWhatIsNotSpoken) {
  EXPECT_EQ(spellings("  \"Hello,\tWorld!\"\n"), "hello|world");
  EXPECT_EQ(spellings("It’s the users' O'Connor-Smith."), "it’s|the|users|o'connor|smith");
  EXPECT_EQ(spellings("José MU\u0308LLER, €5: 10,000.50 at 12:30."),
            "josé|m\u00FCller|5|10,000.50|at|12:30");
  EXPECT_EQ(spellings("?! ... 😀 \xC3"), "");
}

TEST(Pronouncer, SaysNamesNumbersAndAbbreviations) {
  const Pronouncer pronouncer;
  const auto says = [&](const std::string& word, const std::string& phones) {
    const auto all = pronouncer.pronunciations(word);
    return std::find(all.begin(), all.end(), phones) != all.end();
  };
  EXPECT_TRUE(says("Zbigniew", "Z B IH G N UW"));
  EXPECT_TRUE(says("ICAO", "AY S IY EY OW"));
  EXPECT_TRUE(says("21st", "T W EH N T IY F ER S T"));
  EXPECT_TRUE(says("2024", "T W EH N T IY T W EH N T IY F AO R"));
  EXPECT_TRUE(says("47", "F AO R S EH V AH N"));
  EXPECT_TRUE(pronouncer.pronunciations("").empty());
}

}  // namespace
}  // namespace corvana::tests
