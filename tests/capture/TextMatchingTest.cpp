#include <cmath>
#include <fstream>
#include <sstream>
#include <utility>

#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include "capture/NumberText.h"
#include "capture/TextMatching.h"

namespace corvana::capture {
namespace {

using Words = std::vector<std::string>;
using Ranges = std::vector<MatchRange>;

TEST(Characters, AreUnicodesExtendedGraphemeClusters) {
  std::ifstream file(GRAPHEME_BREAK_TEST);
  ASSERT_TRUE(file) << GRAPHEME_BREAK_TEST;
  int cases = 0;
  for (std::string line; std::getline(file, line);) {
    std::istringstream items(line.substr(0, line.find('#')));
    std::string whole, piece;
    std::size_t pieces = 0;
    for (std::string item; items >> item;) {
      if (item == "÷") {
        if (piece.empty()) continue;
        EXPECT_EQ(characterCount(piece), 1u) << line;
        ++pieces;
        whole += std::exchange(piece, "");
      } else if (item != "×") {
        icu::UnicodeString(static_cast<UChar32>(std::stoul(item, nullptr, 16))).toUTF8String(piece);
      }
    }
    if (whole.empty()) continue;
    EXPECT_EQ(characterCount(whole), pieces) << line;
    ++cases;
  }
  EXPECT_GT(cases, 500);
}

TEST(LevenshteinDistance, CountsCharactersAsPeopleSeeThem) {
  const struct {
    const char *a, *b;
    int distance;
  } cases[] = {
      {"", "", 0},
      {"", "four", 4},
      {"four", "", 4},
      {"flaw", "lawn", 2},
      {"kitten", "sitting", 3},
      {"ABC", "abc", 3},
      {"ab cd", "abcd", 1},
      {"\u00e9", "e\u0301", 0},
      {"e\u0301", "e", 1},
      {"", "👩‍👩‍👧‍👦", 1},
      {"🇩🇪x", "🇫🇷x", 1},
      {"\ud55c", "\u1112\u1161\u11ab", 0},
      {"a\r\nb", "ab", 1},
      {"\xff", "x", 1},
      {"fi", "\ufb01", 2},
  };
  for (const auto& [a, b, distance] : cases) {
    EXPECT_EQ(levenshteinDistance(a, b), distance) << a << " | " << b;
    EXPECT_EQ(levenshteinDistance(b, a), distance) << b << " | " << a;
  }
}

TEST(MatchSpokenWords, FindsEachStretchOfTheTextOnce) {
  const struct {
    Words spoken;
    std::string text;
    Ranges ranges;
    float percentage;
  } cases[] = {
      {{"hello", "world"}, "Hello World", {{0, 5}, {6, 5}}, 1},
      {{"the", "the"}, "the cat", {{0, 3}}, 0.5F},
      {{"can", "not"}, "cannot", {{0, 3}, {3, 3}}, 2},
      {{"a"}, "cat", {{1, 1}}, 1},
      {{}, "two words", {}, 0},
      {{""}, "two words", {}, 0},
      {{"b", "a"}, "a  b", {{3, 1}, {0, 1}}, 1},
      {{"one"}, "one\ntwo", {{0, 3}}, 1},
      {{"one"}, "one\ttwo three", {{0, 3}}, 0.5F},
      {{"caf\u00e9"}, "Un CAFE\u0301 noir", {{3, 5}}, 1.0F / 3},
      {{"e"}, "e\u0301", {}, 0},
      {{"x"}, "🎻 x", {{3, 1}}, 0.5F},
      {{"🎻", "🎻"}, "🎻 x", {{0, 2}}, 0.5F},
      {{"title"}, "TITLE", {{0, 5}}, 1},
      {{"straße"}, "STRASSE", {}, 0},
      {{"οδος"}, "ΟΔΟΣ", {{0, 4}}, 1},
      {{"οδος"}, "ΟΔΟΣΑ", {}, 0},
      {{"οδοσ"}, "ΟΔΟΣΑ", {{0, 4}}, 1},
      {{"word", " "}, "word", {{0, 4}, {0, 1}}, 2},
  };
  for (const auto& test : cases) {
    const SpokenWordMatch match = matchSpokenWords(test.spoken, test.text);
    EXPECT_EQ(match.ranges, test.ranges) << test.text;
    EXPECT_EQ(match.percentage, test.percentage) << test.text;
  }
  EXPECT_TRUE(std::isnan(matchSpokenWords({"word"}, "").percentage));
  EXPECT_TRUE(std::isnan(matchSpokenWords({"word"}, "   ").percentage));
}

TEST(Texts, AreTrimmedAndComparedByTheirBeginning) {
  EXPECT_EQ(trimmed(" \n\u00a0 a b\t\u2003\n"), "a b");
  EXPECT_EQ(trimmed(" \n"), "");
  EXPECT_EQ(lowercased("İIÀ"), "i\u0307i\u00e0") << "the locale of the machine has no say";
  EXPECT_TRUE(hasPrefixDroppingLast("PASSPORT_BACK", "PASSPORT_FRONT", 6));
  EXPECT_FALSE(hasPrefixDroppingLast("LICENSE_BACK", "PASSPORT_FRONT", 6));
  EXPECT_FALSE(hasPrefixDroppingLast("passport_BACK", "PASSPORT_FRONT", 6));
  EXPECT_TRUE(hasPrefixDroppingLast("INVOICE", "ID_CARD", 6));
  EXPECT_TRUE(hasPrefixDroppingLast("", "_FRONT", 6));
  EXPECT_DEATH(hasPrefixDroppingLast("CARD", "FRONT", 6), "too short");
}

TEST(Numbers, AreWrittenShortAndAlikeInEveryLocale) {
  EXPECT_EQ(shortestDecimal(0.75F), "0.75");
  EXPECT_EQ(shortestDecimal(0.1F), "0.1");
  EXPECT_EQ(shortestDecimal(0.1), "0.1");
  EXPECT_EQ(shortestDecimal(2.0 / 3), "0.6666666666666666");
  EXPECT_EQ(shortestDecimal(0.0F), "0.0");
  EXPECT_EQ(shortestDecimal(-1.0), "-1.0");
  EXPECT_EQ(shortestDecimal(100000.0F), "100000.0");
  EXPECT_EQ(shortestDecimal(0.0001), "0.0001");
  EXPECT_EQ(shortestDecimal(0.00001F), "1e-05");
  EXPECT_EQ(shortestDecimal(-std::nan("")), "nan");
}

}  // namespace
}  // namespace corvana::capture
