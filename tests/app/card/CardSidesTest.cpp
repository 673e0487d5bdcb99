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

}  // namespace
}  // namespace corvana::tests
