#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "Mrz.h"
#include "TestCards.h"
#include "engine/document/DocumentAnalyzer.h"
#include "engine/vision/MatViews.h"

namespace {

using corvana::DocumentSide;
using engine::DocumentAnalyzer;
using tests::Held;

constexpr platform::CGRect kGuide{50, 804, 620, 391};

class DocumentAnalyzerTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    auto loaded = DocumentAnalyzer::load({.faceModel = FACE_MODEL});
    ASSERT_TRUE(loaded) << loaded.error().localizedDescription();
    analyzer_.emplace(*std::move(loaded));
  }
  static void TearDownTestSuite() { analyzer_.reset(); }

  /// As in a camera frame; no value when the card is not found.
  static std::optional<engine::CardReading> read(const cv::Mat& side, const Held& held) {
    const auto shown = tests::hold(side, held);
    const auto sighting = analyzer_->find(*shown.picture, kGuide);
    if (!sighting.outline) return std::nullopt;
    return analyzer_->read(analyzer_->view(*shown.picture, *sighting.outline));
  }

  static std::string textOf(const engine::CardReading& reading) {
    return tests::joined(*reading.data.ocrStrings);
  }

  static inline std::optional<DocumentAnalyzer> analyzer_;
};

const std::vector<Held> kPoses{{.roll = 2, .blur = 0.8},
                               {.y = 1010, .width = 540, .roll = -7, .taper = 0.03},
                               {.width = 620, .taper = -0.04, .background = 1, .noise = 5}};

TEST_F(DocumentAnalyzerTest, ReadsTheSameZoneFromEveryPicture) {
  for (int design = 0; design < 4; ++design) {
    const auto holder = tests::holder(design % 3);
    const auto card = tests::drawCard(design, holder, "person_a.jpg");
    const auto lines = session::mrzLines(holder);
    auto poses = kPoses;
    poses.push_back({.width = 500, .roll = 10, .background = 1, .blur = 1.1, .noise = 6});
    for (const Held& held : poses) {
      SCOPED_TRACE(testing::Message() << "design " << design << ", width " << held.width);
      const auto reading = read(card.back, held);
      ASSERT_TRUE(reading && reading->data.mrz);
      EXPECT_EQ(reading->data.mrz->lines, std::vector<std::string>(lines.begin(), lines.end()));
      EXPECT_EQ(reading->data.side, DocumentSide::back);
      EXPECT_FALSE(reading->data.isPhotoPresent);
    }
  }
}

TEST_F(DocumentAnalyzerTest, ReadsACardAlikeTwiceAndAnotherDifferently) {
  for (const int design : {0, 1, 2}) {
    const auto card = tests::drawCard(design, tests::holder(0), "person_b.jpg");
    const auto still =
        tests::hold(card.front, {.y = 600, .width = 690, .background = 2, .thumb = false});
    const auto reference = analyzer_->analyzeStill(*still.picture);
    ASSERT_TRUE(reference) << reference.error().localizedDescription();
    const auto other = tests::drawCard(design, tests::holder(1), "person_b.jpg");
    for (const Held& held : kPoses) {
      SCOPED_TRACE(testing::Message() << "design " << design << ", width " << held.width);
      const auto same = read(card.front, held);
      ASSERT_TRUE(same);
      EXPECT_LT(tests::editRatio(textOf(*reference), textOf(*same)), 0.25) << textOf(*same);
      EXPECT_EQ(same->data.side, DocumentSide::front);
      EXPECT_TRUE(same->data.faceImage && same->data.isPhotoPresent);
      const auto different = read(other.front, held);
      ASSERT_TRUE(different);
      EXPECT_GT(tests::editRatio(textOf(*reference), textOf(*different)), 0.5);
    }
  }
}

TEST_F(DocumentAnalyzerTest, TakesStillsInAnyPosition) {
  const auto card = tests::drawCard(0, tests::holder(2), "person_a.jpg");
  const auto upright = engine::rgbMat(*tests::scan(card.front, 1800)).clone();
  for (const std::optional<cv::RotateFlags>& turn :
       {std::optional<cv::RotateFlags>(), std::optional(cv::ROTATE_180),
        std::optional(cv::ROTATE_90_CLOCKWISE), std::optional(cv::ROTATE_90_COUNTERCLOCKWISE)}) {
    cv::Mat picture = upright;
    if (turn) cv::rotate(upright, picture, *turn);
    const auto reading = analyzer_->analyzeStill(*tests::pictureOf(picture));
    ASSERT_TRUE(reading) << reading.error().localizedDescription();
    EXPECT_NE(textOf(*reading).find("OKONKWO"), std::string::npos)
        << turn.value_or(cv::RotateFlags{});
    EXPECT_EQ(reading->data.type, "IDENTITY_CARD_FRONT");
    EXPECT_EQ(reading->data.image->pixels()->width(), 1000);
  }
  const auto plain = tests::pictureOf(cv::Mat(900, 900, CV_8UC3, cv::Scalar(80, 90, 100)));
  EXPECT_FALSE(analyzer_->analyzeStill(*plain));
  EXPECT_FALSE(analyzer_->analyzeStill(*tests::scan(card.front, 200)));
}

TEST_F(DocumentAnalyzerTest, MeasuresBlurAndGlare) {
  const auto card = tests::drawCard(1, tests::holder(0), "person_a.jpg");
  const auto viewOf = [&](const cv::Mat& side, const Held& held) {
    const auto shown = tests::hold(side, held);
    const auto sighting = analyzer_->find(*shown.picture, kGuide);
    return analyzer_->view(*shown.picture, sighting.outline.value());
  };
  const auto clear = viewOf(card.front, {});
  EXPECT_FALSE(clear.isBlurred());
  EXPECT_FALSE(clear.hasTooMuchGlare());
  EXPECT_TRUE(viewOf(card.front, {.blur = 4, .noise = 0}).isBlurred());
  cv::Mat lamp(card.front.size(), CV_8UC1, cv::Scalar(0));
  cv::ellipse(lamp, {900, 600}, {260, 160}, 20, 0, 360, 255, cv::FILLED);
  cv::GaussianBlur(lamp, lamp, cv::Size(), 40);
  cv::Mat glaring;
  cv::Mat light;
  cv::cvtColor(lamp, light, cv::COLOR_GRAY2RGBA);
  cv::add(card.front, light, glaring);
  EXPECT_TRUE(viewOf(glaring, {.noise = 1}).hasTooMuchGlare());
}

TEST(DocumentAnalyzerLoad, NamesThePackageThatIsMissing) {
  const auto messageOf = [](const DocumentAnalyzer::Setup& setup) {
    const auto loaded = DocumentAnalyzer::load(setup);
    return loaded ? std::string() : loaded.error().localizedDescription();
  };
  EXPECT_NE(messageOf({.faceModel = FACE_MODEL, .tessdata = "/nowhere"}).find("tesseract-ocr-eng"),
            std::string::npos);
  EXPECT_NE(messageOf({.faceModel = FACE_MODEL, .ocrBFonts = {"/nowhere.otf"}}).find("fonts-ocr-b"),
            std::string::npos);
}

}  // namespace
