#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "SpecimenZones.h"
#include "engine/document/mrz/MrzParser.h"

namespace corvana::tests {
namespace {

using engine::parseMrz;

std::string digitOf(const std::string& field) {
  return std::to_string(engine::mrzCheckDigit(field));
}

/// A TD1 zone with right check digits, from its fields as they stand in the lines.
std::vector<std::string> td1(std::string number, const std::string& birth = "740812",
                             const std::string& expiry = "320415") {
  number.resize(25, '<');
  const std::string from = birth + digitOf(birth);
  const std::string until = expiry + digitOf(expiry);
  const std::string filler(11, '<');
  return {"I<UTO" + number,
          from + "F" + until + "UTO" + filler + digitOf(number + from + until + filler), kTd1[2]};
}

std::string reasonOf(const std::vector<std::string>& lines) {
  const auto result = parseMrz(lines);
  return result ? "accepted" : result.error().sentence;
}

TEST(MrzParser, ReadsTheSpecimensOfAllThreeFormats) {
  for (const auto& lines : {kTd1, kTd2, kTd3}) {
    const auto result = parseMrz(lines);
    ASSERT_TRUE(result) << lines[0] << ": " << result.error().sentence;
    EXPECT_EQ(result->lines, lines);
    EXPECT_EQ(result->issuingState, "UTO");
    EXPECT_EQ(result->nationality, "UTO");
    EXPECT_EQ(result->surname, "ERIKSSON");
    EXPECT_EQ(result->givenNames, "ANNA MARIA");
    EXPECT_EQ(result->birthDate, "740812");
    EXPECT_EQ(result->expiryDate, "120415");
    EXPECT_EQ(result->sex, "F");
  }
  EXPECT_EQ(parseMrz(kTd1)->documentNumber, "D23145890");
  EXPECT_EQ(parseMrz(kTd3)->documentNumber, "L898902C3");
  EXPECT_EQ(parseMrz(kTd3)->documentCode, "P");
  EXPECT_EQ(parseMrz("\r\n" + kTd1[0] + "\r\n" + kTd1[1] + "  \t\r\n\r\n  " + kTd1[2] + " ")->lines,
            kTd1);
}

TEST(MrzParser, FollowsALongDocumentNumberIntoTheOptionalData) {
  const auto result = parseMrz(td1("D23145890<7349"));
  ASSERT_TRUE(result) << result.error().sentence;
  EXPECT_EQ(result->documentNumber, "D23145890734");
  for (const char* number : {"D23145890<7340", "D23145890<"})
    EXPECT_EQ(reasonOf(td1(number)), "the check digit of the document number is wrong");
}

TEST(MrzParser, LetsTheCheckDigitOfAnEmptyPersonalNumberBeAFiller) {
  auto lines = kTd3;
  for (const char digit : {'<', '0'}) {
    lines[1].replace(28, 15, std::string(14, '<') + digit);
    const std::string& second = lines[1];
    lines[1].back() =
        digitOf(second.substr(0, 10) + second.substr(13, 7) + second.substr(21, 22)).front();
    EXPECT_EQ(reasonOf(lines), "accepted") << digit;
  }
  lines = kTd3;
  lines[1][42] = '<';
  EXPECT_EQ(reasonOf(lines), "the check digit of the personal number is wrong");
}

TEST(MrzParser, RefusesDatesThatNoCalendarHas) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"840229", "320415", "accepted"},
      {"000229", "320415", "accepted"},
      {"830229", "320415", "the birth date is no date"},
      {"840230", "320415", "the birth date is no date"},
      {"841301", "320415", "the birth date is no date"},
      {"840400", "320415", "the birth date is no date"},
      {"8404<<", "320415", "accepted"},
      {"84<<<<", "320415", "accepted"},
      {"84<<12", "320415", "the birth date is no date"},
      {"84041<", "320415", "the birth date is no date"},
      {"840412", "320431", "the expiry date is no date"},
      {"840412", "3204<<", "the expiry date is no date"}};
  for (const auto& [birth, expiry, reason] : cases)
    EXPECT_EQ(reasonOf(td1("D231458907", birth, expiry)), reason) << birth << " " << expiry;
}

TEST(MrzParser, FindsEveryWrongCheckDigit) {
  struct Case {
    std::vector<std::string> lines;
    std::size_t line;
    std::size_t place;
    std::string named;
  };
  for (const Case& c : {Case{kTd1, 0, 14, "check digit of the document number"},
                        {kTd1, 1, 6, "check digit of the birth date"},
                        {kTd1, 1, 14, "check digit of the expiry date"},
                        {kTd1, 1, 29, "composite check digit"},
                        {kTd2, 1, 9, "check digit of the document number"},
                        {kTd2, 1, 19, "check digit of the birth date"},
                        {kTd2, 1, 27, "check digit of the expiry date"},
                        {kTd2, 1, 35, "composite check digit"},
                        {kTd3, 1, 9, "check digit of the document number"},
                        {kTd3, 1, 42, "check digit of the personal number"},
                        {kTd3, 1, 43, "composite check digit"}}) {
    auto lines = c.lines;
    char& digit = lines[c.line][c.place];
    digit = digit == '9' ? '0' : static_cast<char>(digit + 1);
    EXPECT_EQ(reasonOf(lines), "the " + c.named + " is wrong") << c.line << "," << c.place;
  }
}

TEST(MrzParser, RefusesWhatIsNoZone) {
  EXPECT_NE(reasonOf({}), "accepted");
  EXPECT_NE(reasonOf({kTd1[0], kTd1[1]}), "accepted");
  EXPECT_NE(reasonOf({kTd1[0], kTd1[1], kTd1[2] + "<"}), "accepted");
  for (const auto& [line, place, letter] : std::vector<std::tuple<std::size_t, std::size_t, char>>{
           {0, 2, '0'}, {1, 7, 'Q'}, {1, 15, '1'}, {2, 3, '5'}, {2, 0, '<'}, {2, 3, 'i'}}) {
    auto lines = kTd1;
    lines[line][place] = letter;
    EXPECT_NE(reasonOf(lines), "accepted") << line << "," << place << " " << letter;
  }
}

}  // namespace
}  // namespace corvana::tests
