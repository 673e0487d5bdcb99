#include <gtest/gtest.h>

#include "app/card/Reference.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

using corvana::DocumentField;
using corvana::FieldName;
using corvana::FieldSource;

app::Reference withPhoto() {
  app::Reference reference;
  reference.front.faceImage =
      std::make_shared<platform::UIImage>(std::make_shared<platform::PixelBuffer>(
          1, 1, platform::PixelFormat::rgb24, std::vector<std::uint8_t>(3)));
  return reference;
}

TEST(Reference, KeepsFieldsScoresAndWhatTheEnrolmentWarnedOf) {
  const ScratchFolder scratch;
  app::Reference reference = withPhoto();
  reference.front.fields = {
      {FieldName::surname, "MÜLLER", FieldSource::print, 0.5F, false,
       platform::CGRect{390.25, 185, 195, 32}},
      {FieldName::birthDate, "1984-04", FieldSource::print, 1.0F, false, std::nullopt},
      {FieldName::givenNames, "ANNA", FieldSource::print, 0.5F, false,
       platform::CGRect{390, 225, 195, 32}, FieldSource::zone}};
  reference.back.emplace();
  reference.back->fields = {
      {FieldName::givenNames, "ANNA MARIA ELI", FieldSource::zone, 0.9F, true, std::nullopt},
      {FieldName::address, "17 HARBOUR ROAD, ZENITH", FieldSource::code, 1.0F, false,
       std::nullopt}};
  reference.back->isReal = false;
  reference.back->realness = corvana::RealnessScores{0.75F, 0.25F, 0.5F};
  reference.hints = {{{"name", "conflict"}, {"field", "surname"}, {"source", "zone"}},
                     {{"name", "expired"}}};
  ASSERT_TRUE(app::saveReference(reference, scratch.path()));
  const auto loaded = app::loadReference(scratch.path());
  ASSERT_TRUE(loaded) << loaded.error().sentence;
  EXPECT_FALSE(loaded->front.isReal || loaded->front.realness);
  EXPECT_EQ(loaded->back->isReal, false);
  EXPECT_FLOAT_EQ(loaded->back->realness->photocopyScore, 0.75F);
  EXPECT_FLOAT_EQ(loaded->back->realness->screenScore, 0.5F);
  EXPECT_EQ(loaded->front.fields, reference.front.fields);
  EXPECT_EQ(loaded->back->fields, reference.back->fields);
  EXPECT_EQ(loaded->hints, reference.hints);
}

// What a card's barcode holds is for whoever printed it to say.
TEST(Reference, KeepsABarcodeThatIsNoUtf8) {
  const ScratchFolder scratch;
  app::Reference reference = withPhoto();
  reference.back.emplace();
  reference.back->barcode.emplace()["text"] = "A\xed\xa0\x80Z";
  ASSERT_TRUE(app::saveReference(reference, scratch.path()));
  const auto loaded = app::loadReference(scratch.path());
  ASSERT_TRUE(loaded) << loaded.error().sentence;
  const std::string text = loaded->back->barcode->at("text");
  EXPECT_TRUE(text.starts_with("A") && text.ends_with("Z")) << text;
}

TEST(Reference, RefusesFieldsOfAnotherShape) {
  const ScratchFolder scratch;
  app::Reference reference = withPhoto();
  reference.front.fields = {
      {FieldName::sex, "F", FieldSource::zone, 0.5F, false, platform::CGRect{1, 2, 3, 4}}};
  ASSERT_TRUE(app::saveReference(reference, scratch.path()));
  const auto good = *app::parseJson(*app::readFile(scratch / app::kReferenceFileName, 10000), "");
  const std::tuple<const char*, nlohmann::json> cases[] = {
      {"name", "shoeSize"},      {"source", "rumour"}, {"value", 7},     {"value", nullptr},
      {"confidence", "certain"}, {"place", {1, 2, 3}}, {"truncated", 1}, {"knownBy", "print"}};
  for (const auto& [key, value] : cases) {
    auto spoilt = good;
    spoilt["front"]["fields"][0][key] = value;
    ASSERT_TRUE(app::writeFile(scratch / app::kReferenceFileName, spoilt.dump()));
    const auto loaded = app::loadReference(scratch.path());
    ASSERT_FALSE(loaded) << key;
    EXPECT_NE(loaded.error().sentence.find("\"" + std::string(key) + "\""), std::string::npos)
        << loaded.error().sentence;
  }
  for (const auto& hints : {R"(7)", R"([7])", R"([{"field": "sex"}])", R"([{"name": 7}])"}) {
    auto spoilt = good;
    spoilt["hints"] = nlohmann::json::parse(hints);
    ASSERT_TRUE(app::writeFile(scratch / app::kReferenceFileName, spoilt.dump()));
    EXPECT_FALSE(app::loadReference(scratch.path())) << hints;
  }
}

TEST(Reference, RefusesSidesThatAreSwappedAndAFrontWithoutAPhoto) {
  using corvana::DocumentSide;
  const struct {
    std::optional<DocumentSide> front, back;
    bool hasPhoto;
    const char* fault;
  } cases[] = {{DocumentSide::front, DocumentSide::back, true, nullptr},
               {std::nullopt, std::nullopt, true, nullptr},
               {DocumentSide::back, DocumentSide::front, true, "side"},
               {DocumentSide::front, DocumentSide::front, true, "side"},
               {DocumentSide::front, DocumentSide::back, false, "faceImage"}};
  for (const auto& c : cases) {
    const ScratchFolder scratch;
    app::Reference reference = c.hasPhoto ? withPhoto() : app::Reference();
    reference.front.side = c.front;
    reference.back.emplace().side = c.back;
    ASSERT_TRUE(app::saveReference(reference, scratch.path()));
    const auto loaded = app::loadReference(scratch.path());
    const std::string said = loaded ? "" : loaded.error().sentence;
    EXPECT_EQ(loaded.has_value(), c.fault == nullptr) << said;
    EXPECT_NE(said.find(c.fault ? c.fault : ""), std::string::npos) << said;
  }
}

}  // namespace
}  // namespace corvana::tests
