#include <gtest/gtest.h>

#include "Mrz.h"

namespace {

using session::CardData;

TEST(Mrz, IsTheStandardsOwnSpecimen) {
  CardData card;
  card.dateOfBirth = "1974-08-12";
  card.dateOfExpiry = "2012-04-15";
  const auto lines = session::mrzLines(card);
  // The standard's specimen but for its document code "I<".
  EXPECT_EQ(lines[0], "IDUTOD231458907<<<<<<<<<<<<<<<");
  EXPECT_EQ(lines[1], "7408122F1204159UTO<<<<<<<<<<<6");
  EXPECT_EQ(lines[2], "ERIKSSON<<ANNA<MARIA<<<<<<<<<<");
}

TEST(Mrz, CarriesALongNumberOnInTheOptionalData) {
  CardData card;
  card.documentNumber = "D23145890734";
  // The standard's example: nine characters, a filler for the check digit, the rest and its digit.
  EXPECT_EQ(session::mrzLines(card)[0], "IDUTOD23145890<7349<<<<<<<<<<<");
}

TEST(Mrz, WritesNamesWithTheLettersThatTheZoneHas) {
  struct Case {
    const char* surname;
    const char* givenNames;
    const char* line;
  };
  for (const Case& c :
       {Case{"Núñez-O'Brien", "José María", "NUNEZ<OBRIEN<<JOSE<MARIA<<<<<<"},
        Case{"Å", "", "A<<<<<<<<<<<<<<<<<<<<<<<<<<<<<"},
        Case{"PAPANDROPOULOS", "JONATHON ALEXANDER", "PAPANDROPOULOS<<JONATHON<ALEXA"}}) {
    CardData card;
    card.surname = c.surname;
    card.givenNames = c.givenNames;
    EXPECT_EQ(session::mrzLines(card)[2], c.line);
  }
}

TEST(Mrz, LeavesAnUnspecifiedSexOpen) {
  CardData card;
  card.sex = "X";
  EXPECT_EQ(session::mrzLines(card)[1][7], '<');
}

}  // namespace
