#include <gtest/gtest.h>

#include "app/report/TextDifference.h"

namespace corvana::tests {
namespace {

using app::TextPieces;

/// The marked stretches in brackets.
std::string shown(const TextPieces& pieces) {
  std::string all;
  for (const app::TextPiece& piece : pieces)
    all += piece.marked ? "[" + piece.text + "]" : piece.text;
  return all;
}

TEST(TextDifference, MarksWhatTheOtherReadingDoesNotHave) {
  struct Case {
    std::vector<std::string> first, second;
    std::string firstShown, secondShown;
    std::size_t differing;
  };
  const Case cases[] = {
      {{"ERIKSSON"}, {"ERIKSSON"}, "ERIKSSON", "ERIKSSON", 0},
      {{"ER1KSSON"}, {"ERIKSSON"}, "ER[1]KSSON", "ER[I]KSSON", 2},
      {{"ANNA", "MARIA"}, {"ANNAMARIA"}, "ANNA\nMARIA", "ANNAMARIA", 0},
      {{"MÜLLER", "🂡"}, {"MULLER"}, "M[Ü]LLER\n[🂡]", "M[U]LLER", 3},
      {{}, {"A"}, "", "[A]", 1},
      {{}, {}, "", "", 0},
  };
  for (const Case& c : cases) {
    const auto difference = app::compareTexts(c.first, c.second);
    EXPECT_EQ(shown(difference.first), c.firstShown);
    EXPECT_EQ(shown(difference.second), c.secondShown);
    EXPECT_EQ(difference.differing, c.differing) << c.firstShown;
  }
}

TEST(TextDifference, StaysShortWhereSomebodyWroteABookOnTheCard) {
  const auto difference = app::compareTexts({std::string(50'000, 'x')}, {std::string(50'000, 'y')});
  EXPECT_LT(difference.all, 10'000U);
}

TEST(TextDifference, MarksWhatWasHeardAndNamesTheWordsThatWereNot) {
  const std::string text = "Ich öffne – dieses Konto.";
  const std::vector<capture::MatchRange> heard{{0, 3}, {4, 5}, {19, 5}};
  EXPECT_EQ(shown(app::markRanges(text, heard)), "[Ich] [öffne] – dieses [Konto].");
  EXPECT_EQ(app::wordsWithoutMark(text, heard), std::vector<std::string>{"dieses"});
  EXPECT_TRUE(app::wordsWithoutMark(text, {{0, 1000}}).empty());
  EXPECT_EQ(shown(app::markRanges(text, {{-5, 3}, {90, 4}, {2'000'000'000, 2'000'000'000}})), text);
}

}  // namespace
}  // namespace corvana::tests
