#include <vector>

#include <gtest/gtest.h>

#include "engine/document/BarcodeReader.h"
#include "engine/document/DocumentClassifier.h"
#include "engine/document/TextLines.h"

namespace {

using corvana::DocumentSide;
using engine::DocumentFeatures;

corvana::MRZResult mrz(const char* code) {
  corvana::MRZResult result;
  result.documentCode = code;
  return result;
}

TEST(DocumentClassifier, NamesFamilyAndSide) {
  struct Case {
    DocumentFeatures features;
    std::optional<std::string> type;
    bool shouldHaveMrz;
    bool shouldHaveBarcode;
  };
  const std::map<std::string, std::string> licence{{"DAQ", "X1"}};
  const std::vector<Case> cases{
      {{.lines = {"UTOPIA IDENTITY CARD"}, .hasFace = true}, "IDENTITY_CARD_FRONT", false, false},
      {{.lines = {"ERIKSSON"}, .hasFace = true}, "IDENTITY_CARD_FRONT", false, false},
      {{.mrz = mrz("I"), .hasMrzBand = true}, "IDENTITY_CARD_BACK", true, false},
      {{.lines = {"ZENITH"}, .hasMrzBand = true}, "IDENTITY_CARD_BACK", true, false},
      {{.lines = {"DRlVER", "LICENSE"}, .hasFace = true}, "DRIVING_LICENCE_FRONT", false, false},
      {{.lines = {"F\xC3\xBChrerschein"}, .hasFace = true}, "DRIVING_LICENCE_FRONT", false, false},
      {{.barcode = licence}, "DRIVING_LICENCE_BACK", false, true},
      {{.lines = {"TITRE DE S\xC3\x89JOUR"}, .hasFace = true},
       "RESIDENCE_PERMIT_FRONT",
       false,
       false},
      {{.mrz = mrz("AR"), .hasMrzBand = true}, "RESIDENCE_PERMIT_BACK", true, false},
      {{.lines = {"PASSPORT CARD"}, .hasFace = true}, "PASSPORT_CARD_FRONT", false, false},
      {{.mrz = mrz("IP"), .hasMrzBand = true}, "PASSPORT_CARD_BACK", true, false},
      {{.lines = {"nothing that tells"}}, std::nullopt, false, false},
  };
  for (const Case& entry : cases) {
    corvana::DetectedData data;
    engine::classify(entry.features, data);
    SCOPED_TRACE(entry.type.value_or("none"));
    EXPECT_EQ(data.type, entry.type);
    EXPECT_EQ(data.shouldHaveMrz, entry.shouldHaveMrz);
    EXPECT_EQ(data.shouldHaveBarcode, entry.shouldHaveBarcode);
    EXPECT_EQ(data.shouldHavePhoto, data.side == DocumentSide::front);
  }
}

TEST(BarcodeElements, KeepsTheElementsOfALicenceAndTheTextOfOthers) {
  const auto licence = engine::barcodeElements(
      "@\n\x1e\rANSI 636000090002DL00410278ZV03190008DLDAQT64235789\nDCSSAMPLE\nDACMICHAEL  \r"
      "DBB06061986\rZVZVA01\r");
  EXPECT_EQ(licence.at("DAQ"), "T64235789");
  EXPECT_EQ(licence.at("DCS"), "SAMPLE");
  EXPECT_EQ(licence.at("DAC"), "MICHAEL");
  EXPECT_EQ(licence.at("DBB"), "06061986");
  using Elements = std::map<std::string, std::string>;
  EXPECT_EQ(engine::barcodeElements("plain"), (Elements{{"text", "plain"}}));
  EXPECT_EQ(engine::barcodeElements("ANSI 6360"), (Elements{{"text", "ANSI 6360"}}));
}

TEST(TextLines, KeepsSureWordsInReadingOrder) {
  const std::vector<engine::TextWord> words{
      {"MARIA.", {300, 101, 90, 30}, 95}, {"ANNA", {200, 100, 80, 31}, 95},
      {"Given", {200, 70, 50, 17}, 96},   {"names", {260, 74, 60, 13}, 96},
      {"|", {10, 100, 2, 30}, 99},        {"rubbish", {20, 140, 90, 30}, 30},
      {"ee", {20, 180, 30, 30}, 70},      {"ZENITH,", {200, 150, 90, 34}, 90},
      {"OF", {160, 150, 30, 30}, 95},     {"PATTERN", {0, 300, 500, 200}, 90}};
  const std::vector<std::string> expected{"ANNA MARIA", "OF ZENITH"};
  EXPECT_EQ(engine::textLines(words), expected);
  EXPECT_TRUE(engine::textLines({}).empty());
}

}  // namespace
