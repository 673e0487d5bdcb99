#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/document/text/LineDecoder.h"

namespace corvana::tests {
namespace {

const std::vector<std::string> kLetters{"N", "G", "U", "Y", "P", "Þ", "þ", "Č", "Ğ",
                                        "ğ", "Ê", "Ě", "e", "m", "O", "6", " "};

/// Shares of letters; what is left is a pause's.
using Answer = std::map<std::string, float>;

engine::LineReading read(const std::vector<Answer>& answers) {
  std::vector<float> values;
  for (const Answer& answer : answers) {
    float pause = 1;
    for (const auto& [letter, share] : answer)
      pause -= share;
    values.push_back(pause);
    for (const std::string& letter : kLetters)
      values.push_back(answer.contains(letter) ? answer.at(letter) : 0);
  }
  return engine::LineDecoder(kLetters).read(values);
}

TEST(LineDecoder, DropsPausesAndRepetitions) {
  const auto reading = read({{}, {{"N", 0.9F}}, {{"N", 0.8F}}, {}, {{"N", 0.7F}}, {{"U", 1}}, {}});
  EXPECT_EQ(reading.text, "NNU");
  EXPECT_NEAR(reading.confidence, (0.9 + 0.7 + 1) / 3, 1e-6);
  EXPECT_NEAR(reading.leastConfident, 0.7, 1e-6);
  EXPECT_EQ(read({{}, {}}).text, "");
  const auto words = read({{}, {{"N", 1}}, {}, {{"U", 1}}, {{" ", 1}}, {{" ", 1}}, {{"G", 1}}});
  EXPECT_EQ(words.text, "NU G");
  EXPECT_EQ(words.words, (std::vector<std::pair<std::size_t, std::size_t>>{{1, 3}, {6, 6}}));
}

TEST(LineDecoder, SaysWhatElseALineMaySay) {
  using Texts = std::vector<std::string>;
  const Answer n{{"N", 1.F}};
  EXPECT_EQ(read({n, {}, {{"U", 0.998F}}}).others, Texts{}) << "sure letters";
  EXPECT_EQ(read({n, {}, {{"U", 0.6F}, {"Y", 0.3F}, {"O", 0.004F}}}).others, Texts{"NY"});
  EXPECT_EQ(read({n, {}, {{"U", 0.98F}}, {{"U", 0.9F}, {"Y", 0.1F}}}).others, Texts{"NY"})
      << "a letter that is seen twice";
  EXPECT_EQ(read({n, {}, {{"U", 0.7F}, {"Y", 0.3F}}, {{"G", 0.8F}, {"O", 0.2F}}}).others,
            (Texts{"NYG", "NUO", "NYO"}));
  EXPECT_EQ(read({n, {}, {{"U", 0.7F}}}).others, Texts{"N"}) << "a letter too many";
  EXPECT_EQ(read({n, {}, {{"U", 0.4F}}, {}, n}).others, Texts{"NUN"}) << "one that is missing";
  EXPECT_EQ(read({n, {{"N", 0.4F}}, {}, n}).others, Texts{}) << "the rim of a letter";
  EXPECT_EQ(read({n, {}, {{"Ě", 0.06F}, {"Ê", 0.02F}}, {}, n}).others, Texts{"NÊN"})
      << "a hidden letter";
  EXPECT_EQ(read({n, {}, {{"P", 0.97F}, {"Þ", 0.015F}, {"O", 0.01F}}}).others, (Texts{"NP", "NO"}))
      << "a rare letter that was put right";
  const Answer any{{"N", 0.5F}, {"G", 0.3F}, {"U", 0.15F}};
  const Texts many = read({any, {}, any, {}, any, {}, any, {}, any}).others;
  EXPECT_EQ(many.size(), engine::LineDoubts::kMostTexts);
  EXPECT_EQ(std::ranges::count(many, "NNNNN"), 0);
}

struct DoubtCase {
  const char* what;
  std::vector<Answer> answers;
  const char* text;
};

TEST(LineDecoder, PutsRareLettersRightByTheNetworksDoubt) {
  const Answer y{{"Y", 1.F}};
  const Answer n{{"N", 1.F}};
  const DoubtCase cases[] = {
      {"a letter taken for a pause", {y, {}, {{"Ě", 0.19F}, {"Ê", 0.13F}}, {}, n}, "YĚN"},
      {"a sure pause", {y, {}, {{"Ê", 0.004F}}, {}, n}, "YN"},
      {"a pattern", {y, {}, {{"e", 0.4F}, {"m", 0.1F}}, {}, n}, "YN"},
      {"the rim of a letter", {y, {{"Ê", 0.3F}}, {{"Ê", 0.6F}}, {}, n}, "YÊN"},
      {"a thorn", {{{"P", 0.87F}, {"Þ", 0.015F}}, {}, {{"O", 1}}}, "ÞO"},
      {"a P", {{{"P", 0.993F}, {"O", 0.005F}}, {}, {{"O", 1}}}, "PO"},
      {"a G with a breve", {{{"O", 1}}, {}, {{"Č", 0.8F}, {"ğ", 0.02F}}}, "OĞ"},
      {"a C with a caron", {{{"O", 1}}, {}, {{"Č", 0.8F}, {"G", 0.02F}}}, "OČ"},
      {"a zone's G", {{{"6", 0.92F}, {"G", 0.07F}}, {}, {{"6", 1}}}, "G6"},
      {"a 6", {{{"6", 0.99F}, {"G", 0.001F}}, {}, {{"G", 1}}}, "6G"}};
  for (const auto& [what, answers, text] : cases)
    EXPECT_EQ(read(answers).text, text) << what;
  const auto guessed = read(cases[0].answers);
  EXPECT_NEAR(guessed.leastConfident, 0.19, 1e-6) << "so that a second reader is asked";
  EXPECT_NEAR(guessed.confidence, 1, 1e-6);
}

}  // namespace
}  // namespace corvana::tests
