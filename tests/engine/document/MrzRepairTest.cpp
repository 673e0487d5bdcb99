#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "SpecimenZones.h"
#include "engine/document/mrz/MrzParser.h"
#include "engine/document/mrz/MrzRepair.h"
#include "engine/document/mrz/MrzVotes.h"

namespace corvana::tests {
namespace {

using Lines = std::vector<std::string>;

const Lines kGerman{"IDD<<T220001293<<<<<<<<<<<<<<<",  //
                    "6408125<2010315D<<<<<<<<<<<<<4",  //
                    "MUSTERMANN<<ERIKA<<<<<<<<<<<<<"};

/// The zone that is read of print, or why there is none.
std::string readOf(const Lines& print) {
  const auto mrz = engine::readMrz(engine::mrzLinesAmong(print));
  if (!mrz) return mrz.error().sentence;
  std::string text;
  for (const std::string& line : mrz->lines)
    text += line + '\n';
  return text;
}

std::string joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines)
    text += line + '\n';
  return text;
}

TEST(MrzRepair, ReadsANumberByThePrintElsewhere) {
  // The Z was read as a 2, with which the check digits do not hold.
  const Lines zone{"P<UTODIOP<SARR<<BUBAKAR<<<<<<<<<<<<<<<<<<<<<",
                   "Z8728170J3UTO0603191M3103186<<<<<<<<<<<<<<06"};
  const Lines print{zone[0], "28728170J3UT00603191M3103186<<<<<<<<<<<<<<06"};
  EXPECT_FALSE(engine::readMrz(print));
  const auto mrz = engine::readMrzByPrint(print, {"PASAPORTE", "Z8728170J", "19.03.2006"});
  ASSERT_TRUE(mrz);
  EXPECT_EQ(mrz->lines, zone);
  EXPECT_EQ(mrz->documentNumber, "Z8728170J");
  EXPECT_FALSE(engine::readMrzByPrint(print, {"Z8728171J"})) << "another number";
  EXPECT_FALSE(engine::readMrzByPrint(print, {"2872817OJ"})) << "check digits do not hold";
  EXPECT_FALSE(engine::readMrzByPrint(print, {"Z8728"})) << "a part of it";
  EXPECT_FALSE(engine::readMrzByPrint(print, {"Z8728L70J"})) << "a letter that counts as its digit";
}

TEST(MrzRepair, ReadsAZoneAsReadersOfPrintSeeIt) {
  struct Case {
    const char* what;
    Lines print;
    Lines zone;
  };
  const Case cases[] = {
      {"as it is, below other print",
       {"CITY OF ZENITH", "17 HARBOUR ROAD", kTd1[0], kTd1[1], kTd1[2]},
       kTd1},
      {"digits in states and names, letters in dates",
       {"I<UT0D231458907<<<<<<<<<<<<<<<", "74O8I22F12O4159UT0<<<<<<<<<<<6",
        "ER1K5SON<<ANNA<MARIA<<<<<<<<<<"},
       kTd1},
      {"blanks, small letters, other signs for fillers",
       {"I<UTO D23145890 7 «««««««<", "7408122f1204159uto‹‹‹‹‹‹‹‹‹‹‹6", "ERIKSSON«ANNA<MARIA"},
       kTd1},
      {"fillers not seen at the ends of lines",
       {"I<UTOD231458907", "7408122F1204159UTO<<<<<<<<<<<6", "ERIKSSON<<ANNA<MARIA"},
       kTd1},
      {"fillers miscounted",
       {"IUTOD231458907<<<<<<<<<<<<<<<", "7408122F1204159UTO<<<<<<<<6", kTd1[2] + "<<"},
       kTd1},
      {"a letter in a number's digits", {"I<UTOD2314S8907<<<<<<<<<<<<<<<", kTd1[1], kTd1[2]}, kTd1},
      {"two lines of 36",
       {"I<UT0ERIKSSON<<ANNA<MARIA<<<", "D23I458907UTO74O8I22FI2O4159<<<<<<6"},
       kTd2},
      {"two lines of 44",
       {"P<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<<<<<<",
        "L898902C36UTO7408122F1204159ZE184226B<<<<<1O"},
       kTd3},
      {"a state of one letter, one of its fillers lost",
       {"IDD<T220001293<<<<<<<<<<<<<<<", kGerman[1], kGerman[2]},
       kGerman},
      {"a state's D that looks like a nought",
       {"ID0<<T220001293<<<<<<<<<<<<<<<", "6408125<20103150<<<<<<<<<<<<<4", kGerman[2]},
       kGerman},
  };
  for (const Case& c : cases)
    EXPECT_EQ(readOf(c.print), joined(c.zone)) << c.what;
}

TEST(MrzRepair, RefusesWhatItCannotBeSureOf) {
  struct Case {
    const char* what;
    Lines print;
    const char* reason;
  };
  const Case cases[] = {
      {"no zone", {"CITY OF ZENITH"}, "not two or three lines of a zone's length"},
      {"one line", {kTd1[0]}, "not two or three lines of a zone's length"},
      {"an empty line", {"", "", kTd1[0]}, "not two or three lines of a zone's length"},
      {"a wrong digit",
       {"I<UTOD231458917<<<<<<<<<<<<<<<", kTd1[1], kTd1[2]},
       "the check digit of the document number is wrong"},
      {"a state of no list",
       {"I<UTDD231458907<<<<<<<<<<<<<<<", kTd1[1], kTd1[2]},
       "the issuing state is not known"},
      {"a filler lost between surname and given names",
       {kTd1[0], kTd1[1], "ERIKSSON<ANNA<MARIA<<<<<<<<<<<"},
       "the names are not clearly parted"},
      {"a filler too many between given names",
       {kTd1[0], kTd1[1], "ERIKSSON<<ANNA<<MARIA<<<<<<<<<"},
       "the names are not clearly parted"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(readOf(c.print), c.reason) << c.what;
}

TEST(MrzRepair, GlimpsesZonesThatItCannotRead) {
  const Lines page{"P<UTOGROSS<MUELLER<<KAETHE<<<<<<<<<<<<<<<<<<",
                   "27174525<2UT09201110F2711209<<<<<<<<<<<<<<<4"};  // the first 2 is a Z
  ASSERT_FALSE(engine::readMrz(page));
  const auto glimpsed = engine::glimpsedMrz(page);
  ASSERT_TRUE(glimpsed);
  EXPECT_EQ(glimpsed->documentCode, "P");
  ASSERT_EQ(glimpsed->lines.size(), 2U);
  EXPECT_EQ(glimpsed->lines.back().substr(10, 3), "UTO");
  const Lines others[] = {
      {page[0]},
      {page[1], page[0]},
      // A national layout of the same size, with the given names in line two.
      {"IDUTOBERTHIER<<<<<<<<<<<<<<<<<<<<<<<", "9409923102854CORINNE<<<<<<<6512068F4"}};
  for (const Lines& lines : others)
    EXPECT_FALSE(engine::glimpsedMrz(lines)) << lines.front();
}

/// Deals out misreadings; equal everywhere, unlike the distributions of the standard library.
class Dice {
 public:
  std::size_t below(std::size_t limit) { return engine_() % limit; }

 private:
  std::mt19937 engine_{1};
};

/// A TD1 zone of an invented person, whose number begins with letters.
Lines madeZone(Dice& dice) {
  const auto withDigit = [](std::string field) {
    return field + std::to_string(engine::mrzCheckDigit(field));
  };
  std::string number;
  for (int i = 0; i < 9; ++i)
    number += static_cast<char>(i < 2 ? 'A' + dice.below(26) : '0' + dice.below(10));
  std::string first = withDigit(number);
  first.resize(25, '<');
  const std::string from = withDigit("8" + std::to_string(dice.below(10)) + "0412");
  const std::string until = withDigit("3" + std::to_string(dice.below(10)) + "1130");
  const std::string filler(11, '<');
  const std::string all = first + from + until + filler;
  return {"ID" + std::string("FRA") + first,
          from + "F" + until + "FRA" + filler + std::to_string(engine::mrzCheckDigit(all)),
          "MARTIN<<MAELYS<GAELLE<MARIE<<<"};
}

TEST(MrzRepair, MendsMostCommonConfusions) {
  constexpr std::string_view kAsSeen = "O0I1Z2S5B8";
  Dice dice;
  int right = 0;
  int wrong = 0;
  constexpr int kZones = 2000;
  for (int i = 0; i < kZones; ++i) {
    const Lines zone = madeZone(dice);
    Lines seen = zone;
    while (seen == zone) {
      char& c = seen[dice.below(2)][dice.below(30)];
      const auto at = kAsSeen.find(c);
      if (at != std::string_view::npos) c = kAsSeen[at ^ 1U];
    }
    const auto mrz = engine::readMrz(seen);
    if (mrz) (mrz->lines == zone ? right : wrong)++;
  }
  EXPECT_GT(right, kZones * 95 / 100);
  // A number's only guard is one check digit, which fits a wrong guess one time in ten.
  EXPECT_LE(wrong, kZones / 1000);
}

TEST(MrzVotes, NeedAllCheckDigitsAndAClearMajority) {
  const auto print = [](Lines lines, double confidence = 0.9) {
    std::vector<engine::MrzPrint> prints;
    for (std::string& line : lines)
      prints.push_back({std::move(line), confidence});
    return prints;
  };
  Lines smudgedNumber = kTd1;
  smudgedNumber[0][8] = '7';
  Lines smudgedDate = kTd1;
  smudgedDate[1][2] = '3';
  Lines smudgedName = kTd1;
  smudgedName[2][12] = 'M';

  engine::MrzVotes votes;
  EXPECT_FALSE(votes.result());
  votes.add(print(smudgedNumber));
  EXPECT_FALSE(votes.result());
  votes.add(print(smudgedDate));
  EXPECT_FALSE(votes.result()) << "one against one";
  votes.add(print({"I<UTOD23<", "740", "E"}));
  votes.add(print(smudgedName));
  ASSERT_TRUE(votes.result()) << "each smudge is outvoted";
  EXPECT_EQ(votes.result()->lines, kTd1);
  votes.add(print(kGerman));
  ASSERT_TRUE(votes.result()) << "another card";
  EXPECT_EQ(votes.result()->lines, kGerman);
}

}  // namespace
}  // namespace corvana::tests
