#include <gtest/gtest.h>

#include "Mrz.h"

namespace corvana::tests {
namespace {

// The reader of documents, proven by the standard's specimens, reads these lines in its own tests.
TEST(Mrz, WritesWithTheLettersThatTheZoneHasAndCarriesALongNumberOn) {
  session::CardData card;
  const auto nameLine = [&](const char* surname, const char* givenNames) {
    card.surname = surname;
    card.givenNames = givenNames;
    return session::mrzLines(card)[2];
  };
  EXPECT_EQ(nameLine("Núñez-O'Brien", "José María"), "NUNEZ<OBRIEN<<JOSE<MARIA<<<<<<");
  EXPECT_EQ(nameLine("Å", ""), "A<<<<<<<<<<<<<<<<<<<<<<<<<<<<<");
  EXPECT_EQ(nameLine("PAPANDROPOULOS", "JONATHON ALEXANDER"), "PAPANDROPOULOS<<JONATHON<ALEXA");
  card.sex = "X";
  EXPECT_EQ(session::mrzLines(card)[1], "8408129<3204153UTO<<<<<<<<<<<6");
  // The standard's example: nine characters, a filler for the check digit, the rest and its digit.
  card.documentNumber = "D23145890734";
  EXPECT_EQ(session::mrzLines(card)[0], "IDUTOD23145890<7349<<<<<<<<<<<");
}

}  // namespace
}  // namespace corvana::tests
