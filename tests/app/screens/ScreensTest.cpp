#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "ScreenWorld.h"
#include "app/settings/AppearanceTable.h"
#include "app/simulate/ScreensCommand.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& file) {
  std::ostringstream content;
  content << std::ifstream(file, std::ios::binary).rdbuf();
  return content.str();
}

class Screens : public ScreenWorld {
 protected:
  Screens() { fs::create_directories(folder); }
  ~Screens() override { fs::remove_all(folder); }

  app::Expected<void> apply(const std::string& json) {
    const fs::path file = folder / "theme.json";
    std::ofstream(file) << json;
    return app::applyAppearance(file, looks);
  }

  fs::path folder = fs::path(testing::TempDir()) / ("screens-" + std::to_string(getpid()));
  app::WindowLooks looks;
};

TEST_F(Screens, EveryLanguageHasEveryTextAndKeepsItsPlace) {
  std::set<std::string> wanted;
  for (const app::TextEntry& entry : app::translatableTexts(looks))
    wanted.insert(entry.key);
  int languages = 0;
  for (const auto& entry : fs::directory_iterator(fs::path(STORYBOARDS) / "languages")) {
    ++languages;
    const auto applied = app::applyAppearance(entry.path(), looks);
    EXPECT_TRUE(applied) << applied.error().sentence;
    std::set<std::string> missing = wanted;
    const auto texts = nlohmann::json::parse(contentOf(entry.path()));
    for (const auto& [key, value] : texts.items())
      missing.erase(key);
    EXPECT_TRUE(missing.empty()) << entry.path() << " lacks " << *missing.begin();
  }
  EXPECT_GE(languages, 5);
}

TEST_F(Screens, ThemesSetTheTablesAndFaultsAreNamed) {
  ASSERT_TRUE(apply(R"({"idCapture.colors.errorLabelBackgroundColor": "#FF800040",
                        "selfieCapture.fonts.labelFont": {"family": "Serif", "size": 30},
                        "idCapture.layout.labelPosition": "bottom",
                        "screen.textScale": 1.5})"));
  EXPECT_EQ(IDCapture::colors.errorLabelBackgroundColor->red, 1);
  EXPECT_NEAR(IDCapture::colors.errorLabelBackgroundColor->alpha, 64 / 255.0, 1e-9);
  EXPECT_EQ(SelfieCapture::fonts.labelFont, (platform::UIFont{"Serif", 30}));
  EXPECT_EQ(IDCapture::layout.labelPosition, corvana::LabelPosition::bottom);
  EXPECT_EQ(looks.textScale, 1.5);
  const std::pair<const char*, const char*> faults[] = {
      {R"({"idCapture.colors.nonsense": "#FF8000"})", "idCapture.colors.nonsense"},
      {R"({"idCapture.colors.errorLabelTextColor": "#F80"})", "must be a colour"},
      {R"({"idCapture.colors.errorLabelTextColor": "#GG8000"})", "must be a colour"},
      {R"({"selfieCapture.fonts.labelFont": {"size": 4000}})", "must be a font"},
      {R"({"idCapture.images.retryScreenImage": "nowhere.png"})", "must be the path"},
      {R"({"idCapture.layout.labelPosition": 7})", "\"top\", \"center\" or \"bottom\""},
      {R"({"screen.textScale": 9})", "0.8 to 2"},
      {R"({"idCapture.strings.moveCloser": ""})", "must be a text"},
      {"[]", "JSON object"},
      {"{", "theme.json"}};
  for (const auto& [json, complaint] : faults) {
    const auto applied = apply(json);
    ASSERT_FALSE(applied) << json;
    EXPECT_NE(applied.error().sentence.find(complaint), std::string::npos)
        << applied.error().sentence;
  }
  EXPECT_FALSE(app::applyLooks({false, "../en", {}}, {}, looks));
}

TEST_F(Screens, PicturesOfEveryStateAreTheSameEachTime) {
  app::ScreensOptions options;
  options.sizes = {{360, 640}};
  options.themes = {fs::path(STORYBOARDS) / "themes" / "daylight.json"};
  options.resources = {DRAWINGS, "", STORYBOARDS, {}};
  std::vector<fs::path> pictures[2];
  for (int i = 0; i < 2; ++i) {
    options.folder = folder / std::to_string(i);
    std::ostringstream out;
    std::ostringstream err;
    ASSERT_EQ(app::runScreens(options, out, err), app::ExitCode::result) << err.str();
    for (const auto& entry : fs::directory_iterator(options.folder))
      pictures[i].push_back(entry.path());
    std::ranges::sort(pictures[i]);
  }
  EXPECT_GE(pictures[0].size(), 26u);
  ASSERT_EQ(pictures[0].size(), pictures[1].size());
  std::set<std::string> seen;
  for (std::size_t i = 0; i < pictures[0].size(); ++i) {
    const std::string picture = contentOf(pictures[0][i]);
    EXPECT_EQ(picture, contentOf(pictures[1][i])) << pictures[0][i];
    EXPECT_TRUE(seen.insert(picture).second) << pictures[0][i] << " shows what another shows";
  }
  options.folder = "/proc/nowhere";
  std::ostringstream out;
  std::ostringstream err;
  EXPECT_EQ(app::runScreens(options, out, err), app::ExitCode::wrongUse);
  EXPECT_NE(err.str().find("can't be written"), std::string::npos) << err.str();
}

}  // namespace
}  // namespace corvana::tests
