#include <gtest/gtest.h>

#include "app/card/CardSides.h"

namespace corvana::tests {
namespace {

using corvana::DocumentField;
using corvana::FieldName;
using corvana::FieldSource;

/// A front with a name in print and a back whose zone has one.
app::Reference reference(const char* front, const char* back, const char* zoneSurname) {
  app::Reference card;
  card.front.type = front;
  card.front.ocrStrings = {{"MÜLLER", "UTOPIA"}};
  card.back.emplace();
  card.back->type = back;
  card.back->fields = {
      DocumentField{FieldName::surname, zoneSurname, FieldSource::zone, 0.9F, false, {}}};
  return card;
}

TEST(CardSides, OfTwoKindsAreRefusedForWhatIsReallyWrong) {
  const auto kinds = engine::DocumentKinds::load({ENGINE_RESOURCES "/documents"});
  ASSERT_TRUE(kinds) << kinds.error().sentence;
  const auto fault = [&](const char* front, const char* back, const char* surname) {
    return app::sidesFault(reference(front, back, surname), *kinds, "a.jpg", "b.jpg");
  };
  EXPECT_EQ(fault("IDENTITY_CARD_FRONT", "IDENTITY_CARD_BACK", "MUELLER"), "");
  const std::string untitled = fault("IDENTITY_CARD_FRONT", "RESIDENCE_PERMIT_BACK", "MUELLER");
  EXPECT_NE(untitled.find("a RESIDENCE_PERMIT, but no name of such a document was read on "
                          "\"a.jpg\""),
            std::string::npos)
      << untitled;
  EXPECT_NE(fault("RESIDENCE_PERMIT_FRONT", "IDENTITY_CARD_BACK", "MUELLER").find("\"b.jpg\""),
            std::string::npos);
  // Another holder's, or two kinds that both have their names.
  for (const auto& other : {fault("IDENTITY_CARD_FRONT", "RESIDENCE_PERMIT_BACK", "SCHULZ"),
                            fault("DRIVING_LICENCE_FRONT", "RESIDENCE_PERMIT_BACK", "MUELLER")})
    EXPECT_NE(other.find("not of one card"), std::string::npos) << other;
}

TEST(CardSides, AnUntitledFrontIsOfTheKindOfTheBackOfTheSameDocument) {
  const auto kinds = engine::DocumentKinds::load({ENGINE_RESOURCES "/documents"});
  ASSERT_TRUE(kinds) << kinds.error().sentence;
  const auto field = [](FieldName name, const char* value) {
    return DocumentField{name, value, FieldSource::zone, 0.9F, false, {}};
  };
  struct Case {
    const char* what;
    const char* front;
    std::vector<std::string> print;
    std::vector<std::string> printOfBack;
    const char* taken;
  };
  const Case cases[] = {
      {"number", "IDENTITY_CARD_FRONT", {"X4523A117"}, {}, "RESIDENCE_PERMIT_FRONT"},
      {"name, expiry",
       "IDENTITY_CARD_FRONT",
       {"MÜLLER", "01.02.2031"},
       {},
       "RESIDENCE_PERMIT_FRONT"},
      {"the holder's only", "IDENTITY_CARD_FRONT", {"MÜLLER", "JAN"}, {}, "IDENTITY_CARD_FRONT"},
      {"another's of that day",
       "IDENTITY_CARD_FRONT",
       {"SCHULZ", "01.02.2031"},
       {},
       "IDENTITY_CARD_FRONT"},
      {"on the back alone",
       "IDENTITY_CARD_FRONT",
       {"MÜLLER"},
       {"X4523A117"},
       "IDENTITY_CARD_FRONT"},
      {"another document of the holder",
       "IDENTITY_CARD_FRONT",
       {"MÜLLER", "01.02.2031", "X4523A119"},
       {},
       "IDENTITY_CARD_FRONT"},
      {"titled", "DRIVING_LICENCE_FRONT", {"X4523A117"}, {}, "DRIVING_LICENCE_FRONT"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    app::Reference card = reference(c.front, "RESIDENCE_PERMIT_BACK", "MUELLER");
    card.front.ocrStrings = c.print;
    card.back->ocrStrings = c.printOfBack;
    card.back->fields->push_back(field(FieldName::documentNumber, "X4523A117"));
    card.back->fields->push_back(field(FieldName::expiryDate, "2031-02-01"));
    EXPECT_EQ(app::takeKindOfBack(card, *kinds), c.front != std::string(c.taken));
    EXPECT_EQ(card.front.type, c.taken);
  }
}

}  // namespace
}  // namespace corvana::tests
