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
  EXPECT_EQ(nameLine("Å", ""), "AA<<<<<<<<<<<<<<<<<<<<<<<<<<<<");
  EXPECT_EQ(nameLine("Müller-Żółkiewski", "Şükrü Ærø"), "MUELLER<ZOLKIEWSKI<<SUEKRUE<AE");
  EXPECT_EQ(nameLine("Gʻofurov", "Şəbnəm Ọlá"), "GOFUROV<<SEBNEM<OLA<<<<<<<<<<<");
  EXPECT_EQ(nameLine("PAPANDROPOULOS", "JONATHON ALEXANDER"), "PAPANDROPOULOS<<JONATHON<ALEXA");
  card.sex = "X";
  EXPECT_EQ(session::mrzLines(card)[1], "8408129<3204153UTO<<<<<<<<<<<6");
  // The standard's example: nine characters, a filler for the check digit, the rest and its digit.
  card.documentNumber = "D23145890734";
  EXPECT_EQ(session::mrzLines(card)[0], "IDUTOD23145890<7349<<<<<<<<<<<");
}

// The standard's own specimens of the two longer zones.
TEST(Mrz, WritesTheZonesOfLargerCardsAndOfPassports) {
  session::CardData card;
  card.dateOfBirth = "1974-08-12";
  card.dateOfExpiry = "2012-04-15";
  card.documentNumber = "D23145890";
  card.documentCode = "I";
  EXPECT_EQ(session::mrzLines(card, session::MrzFormat::td2),
            (std::vector<std::string>{"I<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<",
                                      "D231458907UTO7408122F1204159<<<<<<<6"}));
  card.documentCode = "P";
  card.documentNumber = "L898902C3";
  card.optionalData = "ZE184226B";
  EXPECT_EQ(session::mrzLines(card, session::MrzFormat::td3),
            (std::vector<std::string>{"P<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<<<<<<<<<",
                                      "L898902C36UTO7408122F1204159ZE184226B<<<<<10"}));
}

}  // namespace
}  // namespace corvana::tests
