#include <regex>
#include <set>

#include <gtest/gtest.h>

#include "app/report/ReportWords.h"
#include "engine/document/guidance/CardQuality.h"
#include "engine/selfie/PersonCompare.h"

namespace corvana::tests {
namespace {

using app::ReportWords;

const std::filesystem::path kLanguages = std::filesystem::path(REPORT_RESOURCES) / "languages";

std::multiset<std::string> placesIn(const std::string& words) {
  static const std::regex kPlace(R"(\{\w+\})");
  return {std::sregex_token_iterator(words.begin(), words.end(), kPlace),
          std::sregex_token_iterator()};
}

TEST(ReportWords, EachLanguageSaysAllThatEnglishSays) {
  const auto english = ReportWords::load(kLanguages, "en");
  ASSERT_TRUE(english);
  const auto codes = ReportWords::languagesIn(kLanguages);
  EXPECT_EQ(codes, (std::vector<std::string>{"ar", "de", "en", "es", "fr"}));
  for (const std::string& code : codes) {
    const auto words = ReportWords::load(kLanguages, code);
    ASSERT_TRUE(words) << code;
    EXPECT_EQ(words->of("language"), code);
    EXPECT_EQ(words->all().size(), english->all().size()) << code;
    for (const auto& [key, value] : english->all().items()) {
      ASSERT_TRUE(words->all().contains(key)) << code << ": " << key;
      EXPECT_EQ(placesIn(words->all()[key]), placesIn(value)) << code << ": " << key;
    }
  }
}

TEST(ReportWords, HasWordsForWhateverARunTells) {
  using engine::CardFlaw;
  using engine::FaceFlaw;
  const auto words = ReportWords::load(kLanguages, "de");
  ASSERT_TRUE(words);
  std::vector<std::string> hints;
  for (const auto flaw : {CardFlaw::tooDark, CardFlaw::blurred, CardFlaw::covered, CardFlaw::copy})
    hints.emplace_back(nameOf(flaw));
  for (const auto flaw : {FaceFlaw::tooFar, FaceFlaw::tooDark, FaceFlaw::hidden,
                          FaceFlaw::turnedAway, FaceFlaw::blurred, FaceFlaw::outOfSight})
    hints.emplace_back(nameOf(flaw));
  for (const std::string& hint : hints)
    EXPECT_NE(words->name("hint", hint), hint);
  for (const std::string sign :
       {"blink", "relief", "repetition", "edges", "samePerson", "lipsAtRest"})
    EXPECT_NE(words->name("sign", sign), sign);
}

TEST(ReportWords, FillsPlacesOnceAndLeavesStrangeNamesAsTheyAre) {
  const auto words = ReportWords::load(kLanguages, "en");
  ASSERT_TRUE(words);
  EXPECT_EQ(words->of("virtual", {{"name", "{name} {limit}"}, {"limit", "x"}}),
            "{name} {limit} (virtual)");
  EXPECT_EQ(words->name("decision", "<b>"), "<b>");
}

TEST(ReportWords, RefusesALanguageThatThereIsNot) {
  for (const char* language : {"tlh", "", "../languages/en", "/etc/passwd"}) {
    const auto words = ReportWords::load(kLanguages, language);
    ASSERT_FALSE(words) << language;
    EXPECT_NE(words.error().sentence.find("ar, de, en, es, fr"), std::string::npos);
  }
}

}  // namespace
}  // namespace corvana::tests
