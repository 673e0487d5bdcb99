#include <vector>

#include <gtest/gtest.h>

#include "engine/document/DocumentClassifier.h"
#include "engine/document/text/TextLines.h"
#include "support/Scratch.h"

namespace corvana::tests {
namespace {

using corvana::DocumentSide;
using engine::DocumentFeatures;

corvana::MRZResult mrz(const char* code) {
  corvana::MRZResult result;
  result.documentCode = code;
  return result;
}

const engine::DocumentKinds& kinds() {
  static const auto kLoaded = engine::DocumentKinds::load({ENGINE_RESOURCES "/documents"});
  return kLoaded.value();
}

TEST(DocumentClassifier, NamesFamilyAndSide) {
  const std::map<std::string, std::string> licence{{"DAQ", "X1"}};
  const std::pair<DocumentFeatures, const char*> cases[] = {
      {{.lines = {"UTOPIA IDENTITY CARD"}, .hasFace = true}, "IDENTITY_CARD_FRONT"},
      {{.lines = {"ERIKSSON"}, .hasFace = true}, "IDENTITY_CARD_FRONT"},
      {{.mrz = mrz("I"), .hasMrzBand = true}, "IDENTITY_CARD_BACK"},
      {{.lines = {"ZENITH"}, .hasMrzBand = true}, "IDENTITY_CARD_BACK"},
      {{.lines = {"DRlVER", "LICENSE"}, .hasFace = true}, "DRIVING_LICENCE_FRONT"},
      {{.lines = {"F\xC3\xBChrerschein"}, .hasFace = true}, "DRIVING_LICENCE_FRONT"},
      {{.barcode = licence}, "DRIVING_LICENCE_BACK"},
      {{.lines = {"TITRE DE S\xC3\x89JOUR"}, .hasFace = true}, "RESIDENCE_PERMIT_FRONT"},
      {{.lines = {"UPPEH\xC3\x85LLSTILLST\xC3\x85ND"}, .hasFace = true}, "RESIDENCE_PERMIT_FRONT"},
      {{.lines = {"POVOLEN\xC3\x8D K POBYTU"}, .hasFace = true}, "RESIDENCE_PERMIT_FRONT"},
      {{.lines = {"\xC5\x98IDI\xC4\x8CSK\xC3\x9D PR\xC5\xAEKAZ"}, .hasFace = true},
       "DRIVING_LICENCE_FRONT"},
      {{.lines = {"T\xC3\x8DTULO DE RESID\xC3\x8ANCIA"}, .hasFace = true},
       "RESIDENCE_PERMIT_FRONT"},
      {{.mrz = mrz("AR"), .hasMrzBand = true}, "RESIDENCE_PERMIT_BACK"},
      {{.lines = {"PASSPORT CARD"}, .hasFace = true}, "PASSPORT_CARD_FRONT"},
      {{.mrz = mrz("IP"), .hasMrzBand = true}, "PASSPORT_CARD_BACK"},
      {{.lines = {"nothing that tells"}}, "none"},
  };
  for (const auto& [features, type] : cases) {
    corvana::DetectedData data;
    engine::classify(features, kinds(), data);
    SCOPED_TRACE(type);
    EXPECT_EQ(data.type.value_or("none"), type);
    EXPECT_EQ(data.shouldHaveMrz, features.hasMrzBand);
    EXPECT_EQ(data.shouldHaveBarcode, features.barcode.has_value());
    EXPECT_EQ(data.shouldHavePhoto, data.side == DocumentSide::front);
  }
}

TEST(DocumentClassifier, TakesAFrontWithoutATitleForTheKindThatIsKnown) {
  const auto typeOf = [](DocumentFeatures features, const char* known) {
    features.known = kinds().ofType(known);
    corvana::DetectedData data;
    engine::classify(features, kinds(), data);
    return data.type.value_or("none");
  };
  const DocumentFeatures front{.lines = {"ERIKSSON"}, .hasFace = true};
  EXPECT_EQ(typeOf(front, "RESIDENCE_PERMIT_FRONT"), "RESIDENCE_PERMIT_FRONT");
  EXPECT_EQ(typeOf(front, "TD2_CARD_FRONT"), "IDENTITY_CARD_FRONT") << "its zone would be there";
  const DocumentFeatures titled{.lines = {"Driving licence"}, .hasFace = true};
  EXPECT_EQ(typeOf(titled, "RESIDENCE_PERMIT_FRONT"), "DRIVING_LICENCE_FRONT");
  // A back's record says what it is.
  EXPECT_EQ(typeOf({.mrz = mrz("I"), .hasMrzBand = true}, "RESIDENCE_PERMIT_FRONT"),
            "IDENTITY_CARD_BACK");
}

/// A zone of so many lines of so many characters.
corvana::MRZResult mrz(const char* code, std::size_t lines, std::size_t length) {
  corvana::MRZResult result = mrz(code);
  result.lines.assign(lines, std::string(length, '<'));
  return result;
}

TEST(DocumentClassifier, TellsKindsAndSidesByTheirZones) {
  const struct {
    corvana::MRZResult zone;
    bool hasFace;
    const char* type;
  } cases[] = {
      {mrz("P", 2, 44), true, "PASSPORT_PAGE_FRONT"},
      {mrz("P", 2, 44), false, "PASSPORT_PAGE_FRONT"},  // it has no other side
      {mrz("I", 2, 36), true, "TD2_CARD_FRONT"},
      {mrz("I", 2, 36), false, "IDENTITY_CARD_BACK"},  // the front's zone is beside the photo
      {mrz("IR", 2, 36), true, "RESIDENCE_PERMIT_FRONT"},
      {mrz("I", 3, 30), false, "IDENTITY_CARD_BACK"},
      {mrz("I", 3, 30), true, "IDENTITY_CARD_BACK"},  // a small second photo
      {mrz("V", 2, 44), true, "IDENTITY_CARD_FRONT"},
  };
  for (const auto& c : cases) {
    corvana::DetectedData data;
    engine::classify({.mrz = c.zone, .hasMrzBand = true, .hasFace = c.hasFace}, kinds(), data);
    EXPECT_EQ(data.type, c.type) << c.zone.documentCode;
  }
}

TEST(DocumentClassifier, AsksForAZoneThatWasOnlyGlimpsedBesideThePhoto) {
  const struct {
    corvana::MRZResult zone;
    bool hasFace;
    const char* type;
    bool shouldHaveMrz;
  } cases[] = {
      {mrz("P", 2, 44), true, "PASSPORT_PAGE_FRONT", true},
      {mrz("I", 2, 36), true, "TD2_CARD_FRONT", true},
      {mrz("I", 3, 30), true, "IDENTITY_CARD_FRONT", false},
      {mrz("P", 2, 44), false, "none", false},
  };
  for (const auto& c : cases) {
    corvana::DetectedData data;
    engine::classify({.glimpsedMrz = c.zone, .hasFace = c.hasFace}, kinds(), data);
    EXPECT_EQ(data.type.value_or("none"), c.type) << c.zone.documentCode;
    EXPECT_EQ(data.shouldHaveMrz, c.shouldHaveMrz) << c.type;
  }
}

TEST(DocumentClassifier, TellsABareBackByItsKindsName) {
  const ScratchFolder scratch;
  writeBytes(scratch / "kind.json",
             R"({"stem": "LIBRARY_CARD", "title": "a", "size": "ID-1",
                 "names": {"en": ["Library card"]},
                 "sides": {"front": {"photo": {}, "code": {"format": "PDF417"}}, "back": {}}})");
  const auto more =
      engine::DocumentKinds::load({ENGINE_RESOURCES "/documents", scratch.path()}).value();
  const std::map<std::string, std::string> code{{"text", "4711"}};
  const std::pair<DocumentFeatures, const char*> cases[] = {
      {{.lines = {"THIS LIBRARY CARD", "IS OURS"}}, "LIBRARY_CARD_BACK"},
      {{.lines = {"LIBRARY CARD"}, .hasFace = true}, "LIBRARY_CARD_FRONT"},
      {{.lines = {"LIBRARY CARD"}, .barcode = code, .hasFace = true}, "LIBRARY_CARD_FRONT"},
      {{.lines = {"DRIVING LICENCE"}}, "none"},
  };
  for (const auto& [features, type] : cases) {
    corvana::DetectedData data;
    engine::classify(features, more, data);
    EXPECT_EQ(data.type.value_or("none"), type);
    EXPECT_EQ(data.shouldHaveBarcode, data.side == DocumentSide::front);
  }
}

TEST(DocumentClassifier, MeasuresHowWellTheCardSpeaksForEachFamily) {
  using Matches = engine::FamilyMatches;
  // Of the name's 13 letters one is misread and one missing.
  const Matches licence =
      engine::familyMatches({.lines = {"DRlVER LICENS", "of passports"}}, kinds());
  ASSERT_EQ(licence.size(), 3u) << "an identity card is what remains";
  EXPECT_EQ(licence[0].first, "DRIVING_LICENCE");
  EXPECT_NEAR(licence[0].second, 11.0 / 13, 1e-6);
  EXPECT_EQ(licence[1].first, "PASSPORT_CARD");
  EXPECT_GT(licence[1].second, licence[2].second);
  EXPECT_EQ(engine::familyMatches({.lines = {"DRIVER LICENSE"}, .mrz = mrz("IR")}, kinds())[1],
            Matches::value_type("RESIDENCE_PERMIT", 1))
      << "by its zone";
  for (const auto& [family, share] : engine::familyMatches({}, kinds()))
    EXPECT_EQ(share, 0) << family;
}

TEST(TextLines, KeepsWhatIsSureInReadingOrder) {
  const std::vector<engine::TextLine> found{
      {"MARIA.", {300, 101, 90, 30}, 0.95},  {"ANNA", {200, 100, 80, 31}, 0.95},
      {"Given", {200, 70, 50, 17}, 0.96},    {"names", {260, 74, 60, 13}, 0.96},
      {"|", {10, 100, 2, 30}, 0.99},         {"rubbish", {20, 140, 90, 30}, 0.30},
      {"ee", {20, 180, 30, 30}, 0.70},       {"ZENITH,", {200, 150, 90, 34}, 0.90},
      {"OF", {160, 150, 30, 30}, 0.95},      {"ZENITH<<", {100, 500, 700, 33}, 0.95},
      {"PATTERN", {0, 300, 500, 200}, 0.90}, {"\xC3\x85\xC3\x96", {20, 180, 30, 30}, 0.70}};
  EXPECT_EQ(engine::textLines(found, {{0, 450, 1000, 180}}),
            (std::vector<std::string>{"ANNA MARIA", "OF ZENITH"}));
  EXPECT_TRUE(engine::textLines({}, {}).empty());
  const std::vector<engine::TextLine> behindLabels{
      {"ANNA MARIA ERIKSSON OF ZENITH", {200, 100, 450, 30}, 0.95},
      {"Given, as spelled", {200, 150, 300, 25}, 0.95},
      {"Valid, by day: 28/03/2037", {200, 200, 300, 25}, 0.95},
      {"Valid, by day: 28/03/2038", {200, 250, 300, 22}, 0.95}};
  EXPECT_EQ(
      engine::textLines(behindLabels, {}),
      (std::vector<std::string>{"ANNA MARIA ERIKSSON OF ZENITH", "Valid, by day: 28/03/2037"}))
      << "the tails of a small label reach no lower than the number behind it";
  EXPECT_EQ(engine::characterCount("ZO\xC3\x8B"), 3u);
}

}  // namespace
}  // namespace corvana::tests
