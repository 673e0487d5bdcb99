#include <numeric>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#define ZX_USE_UTF8
#include <ZXing/BitMatrix.h>
#include <ZXing/MultiFormatWriter.h>

#include "Mrz.h"
#include "TestCards.h"
#include "capture/TextMatching.h"
#include "engine/document/DocumentAnalyzer.h"
#include "engine/document/guidance/PrintWatch.h"
#include "engine/vision/ImageOps.h"
#include "engine/vision/MatViews.h"

namespace corvana::tests {
namespace {

using corvana::DocumentSide;
using engine::DocumentAnalyzer;
using tests::Held;

const Held kPoses[] = {{.roll = 2, .blur = 0.8},
                       {.y = 1010, .width = 540, .roll = -7, .taper = 0.03},
                       {.width = 620, .taper = -0.04, .background = 1, .noise = 5},
                       {.width = 500, .roll = 10, .background = 1, .blur = 1.1, .noise = 6}};

const auto kTextModels = engine::NetworkTextReader::Models::inFolder(ENGINE_RESOURCES);
const auto kDocuments = std::make_shared<const engine::DocumentTables>(
    *engine::loadDocumentTables({ENGINE_RESOURCES "/documents"}));

class DocumentAnalyzerTest : public testing::Test {
 protected:
  /// As in a camera frame; the card must be found.
  engine::CardView view(const cv::Mat& side, const Held& held) {
    const auto shown = tests::hold(side, held);
    return analyzer->view(shown.picture, analyzer->find(*shown.picture, kGuide).outline.value());
  }
  engine::CardReading read(const cv::Mat& side, const Held& held) {
    return analyzer->read(view(side, held));
  }
  static std::string flawIn(const engine::CardView& view) {
    const auto found = engine::flawOf(view.quality, {});
    return found ? engine::nameOf(found->flaw) : "none";
  }
  static std::string textOf(const engine::CardReading& reading) {
    const auto& lines = *reading.data.ocrStrings;
    return std::accumulate(lines.begin(), lines.end(), std::string());
  }
  /// As the module compares the texts of a card with its reference.
  static double difference(const engine::CardReading& a, const engine::CardReading& b) {
    const auto longer =
        std::max(capture::characterCount(textOf(a)), capture::characterCount(textOf(b)));
    return double(capture::levenshteinDistance(textOf(a), textOf(b))) / double(longer);
  }

  platform::Expected<DocumentAnalyzer> analyzer = DocumentAnalyzer::load(
      std::make_shared<engine::FaceDetector>(engine::FaceDetector::load(FACE_MODEL).value()),
      {.text = kTextModels, .documents = kDocuments});
};

TEST_F(DocumentAnalyzerTest, ReadsTheSameZoneFromEveryPicture) {
  for (const int number : {0, 1, 2}) {
    const auto holder = tests::holder(number);
    const auto card = tests::drawCard(number % 2, holder, "person_a.jpg");
    const auto lines = session::mrzLines(holder);
    for (const Held& held : kPoses) {
      SCOPED_TRACE(testing::Message() << "holder " << number << ", width " << held.width);
      const auto reading = read(card.back, held);
      ASSERT_TRUE(reading.data.mrz);
      EXPECT_EQ(reading.data.mrz->lines, std::vector<std::string>(lines.begin(), lines.end()));
      EXPECT_EQ(reading.data.side, DocumentSide::back);
      EXPECT_FALSE(reading.data.isPhotoPresent);
    }
  }
}

TEST_F(DocumentAnalyzerTest, ReadsACardAlikeTwiceAndAnotherDifferently) {
  for (const int design : {0, 1}) {
    const auto card = tests::drawCard(design, tests::holder(0), "person_b.jpg");
    const auto other = tests::drawCard(design, tests::holder(1), "person_b.jpg");
    const auto still = tests::hold(card.front, {.y = 600, .width = 690, .background = 2});
    const auto reference = analyzer->analyzeStill(still.picture);
    ASSERT_TRUE(reference) << reference.error().sentence;
    for (const Held& held : std::span(kPoses).first(3)) {  // small print needs more than a zone
      SCOPED_TRACE(testing::Message() << "design " << design << ", width " << held.width);
      const auto same = read(card.front, held);
      EXPECT_LT(difference(*reference, same), 0.25) << textOf(same);
      EXPECT_EQ(same.data.side, DocumentSide::front);
      EXPECT_TRUE(same.data.faceImage && same.data.isPhotoPresent);
      EXPECT_GT(difference(*reference, read(other.front, held)), 0.5);
    }
  }
}

TEST_F(DocumentAnalyzerTest, TakesStillsAtAnyTurn) {
  const auto card = tests::drawCard(0, tests::holder(2), "person_a.jpg");
  cv::Mat upright;
  cv::cvtColor(card.front, upright, cv::COLOR_RGBA2RGB);
  for (int turns = 0; turns < 4; ++turns) {
    const auto reading = analyzer->analyzeStill(engine::pixelBufferFrom(upright));
    ASSERT_TRUE(reading) << reading.error().sentence;
    EXPECT_NE(textOf(*reading).find("OKONKWO"), std::string::npos) << turns;
    EXPECT_EQ(reading->data.type, "IDENTITY_CARD_FRONT");
    EXPECT_EQ(reading->data.image->pixels()->width(), 1000);
    cv::rotate(upright, upright, cv::ROTATE_90_CLOCKWISE);
  }
  cv::resize(upright, upright, {200, 126}, 0, 0, cv::INTER_AREA);
  EXPECT_FALSE(analyzer->analyzeStill(engine::pixelBufferFrom(upright))) << "too small";
  const cv::Mat plain(900, 900, CV_8UC3, cv::Scalar(80, 90, 100));
  EXPECT_FALSE(analyzer->analyzeStill(engine::pixelBufferFrom(plain)));
  cv::Mat noPrint = plain.clone();
  cv::rectangle(noPrint, {100, 250, 634, 400}, cv::Scalar(240, 238, 230), cv::FILLED);
  EXPECT_FALSE(analyzer->analyzeStill(engine::pixelBufferFrom(noPrint))) << "no card";
}

/// A still of 720 by 1,280 pixels, turned about its middle.
platform::PixelBufferRef turned(const platform::PixelBuffer& still, double degrees) {
  cv::Mat picture;
  cv::warpAffine(engine::rgbMat(still), picture, cv::getRotationMatrix2D({360, 640}, degrees, 1),
                 {720, 1280}, cv::INTER_LINEAR, cv::BORDER_REFLECT);
  return engine::pixelBufferFrom(picture);
}

TEST_F(DocumentAnalyzerTest, TakesStillsThatLieAskewOnATable) {
  const auto card = tests::drawCard(1, tests::holder(0), "person_a.jpg");
  const auto lines = session::mrzLines(tests::holder(0));
  for (const double degrees : {37.0, 118.0, 200.0, 285.0}) {
    const auto still = tests::hold(card.back, {.y = 640, .width = 560, .background = 1});
    const auto reading = analyzer->analyzeStill(turned(*still.picture, degrees));
    ASSERT_TRUE(reading) << degrees << ": " << reading.error().sentence;
    ASSERT_TRUE(reading->data.mrz) << degrees;
    EXPECT_EQ(reading->data.mrz->lines, std::vector<std::string>(lines.begin(), lines.end()));
    EXPECT_EQ(reading->data.type, "IDENTITY_CARD_BACK");
  }
}

/// A licence's back: a magnetic stripe above a barcode above print.
cv::Mat backWithStripe() {
  const cv::Scalar ink(20, 20, 30, 255);
  cv::Mat side(638, 1011, CV_8UC4, cv::Scalar(235, 225, 205, 255));
  cv::rectangle(side, {0, 50, side.cols, 130}, ink, cv::FILLED);
  const std::string record =
      "@\n\x1e\rANSI 636000090002DL00410278ZV03190008DLDAQT64235789\nDCSSAMPLE\nDACMICHAEL\n"
      "DADBAO\nDBB06061986\nDBA06062030\nDBD06062022\nDAG1234 SOME LONG STREET\nDAIZENITH\n"
      "DCF83D9BN217QO983B1\nDCGUSA\r";
  const ZXing::BitMatrix code =
      ZXing::MultiFormatWriter(ZXing::BarcodeFormat::PDF417).setMargin(2).encode(record, 900, 190);
  cv::rectangle(side, {50, 215, code.width() + 10, code.height() + 10}, {255, 255, 255, 255},
                cv::FILLED);
  for (int y = 0; y < code.height(); ++y) {
    for (int x = 0; x < code.width(); ++x) {
      if (code.get(x, y)) side.at<cv::Vec4b>(220 + y, 55 + x) = cv::Vec4b(0, 0, 0, 255);
    }
  }
  int y = 470;
  for (const char* line : {"9a ENDORSEMENTS: NONE     12 RESTRICTIONS: B", "B - CORRECTIVE LENSES",
                           "ISSUED BY DMV ZENITH"}) {
    cv::putText(side, line, {60, y}, cv::FONT_HERSHEY_DUPLEX, 0.9, ink, 2, cv::LINE_AA);
    y += 55;
  }
  return side;
}

TEST_F(DocumentAnalyzerTest, FindsACardByItsBarcode) {
  for (const double degrees : {60.0, 180.0, 235.0}) {
    const auto still =
        tests::hold(backWithStripe(), {.y = 640, .width = 590, .background = 2, .blur = 0.4});
    const auto reading = analyzer->analyzeStill(turned(*still.picture, degrees));
    ASSERT_TRUE(reading) << degrees << ": " << reading.error().sentence;
    ASSERT_TRUE(reading->data.barcode) << degrees;
    EXPECT_EQ(reading->data.barcode->at("DAQ"), "T64235789") << degrees;
    EXPECT_EQ(reading->data.type, "DRIVING_LICENCE_BACK") << degrees;
  }
}

TEST_F(DocumentAnalyzerTest, TurnsACardThatIsHeldOnItsHead) {
  const auto card = tests::drawCard(0, tests::holder(2), "person_a.jpg");
  for (const bool isFront : {true, false}) {
    const auto held = view(isFront ? card.front : card.back, {.roll = 180});
    engine::CardMemory memory;
    for (const char* again : {"first", "again"}) {
      const auto reading = analyzer->read(held, memory);
      EXPECT_TRUE(reading.isUpsideDown) << again;
      EXPECT_EQ(reading.data.side, isFront ? DocumentSide::front : DocumentSide::back) << again;
      EXPECT_EQ(reading.data.mrz.has_value(), !isFront) << again;
      EXPECT_EQ(textOf(reading).find("OKONKWO") != std::string::npos, isFront) << again;
    }
  }
  EXPECT_FALSE(read(card.front, {}).isUpsideDown);
}

TEST_F(DocumentAnalyzerTest, MeasuresBlurGlareAndDarkness) {
  const auto card = tests::drawCard(1, tests::holder(0), "person_a.jpg");
  const auto clear = view(card.front, {});
  EXPECT_EQ(flawIn(clear), "none");
  EXPECT_EQ(flawIn(view(card.front, {.blur = 4, .noise = 0})), "blurred");
  cv::Mat lamp(card.front.size(), CV_8UC4, cv::Scalar::all(0));
  cv::ellipse(lamp, {900, 600}, {260, 160}, 20, 0, 360, cv::Scalar::all(255), cv::FILLED);
  cv::GaussianBlur(lamp, lamp, cv::Size(), 40);
  EXPECT_EQ(flawIn(view(card.front + lamp, {.noise = 1})), "tooMuchGlare");
  EXPECT_EQ(flawIn(view(0.2 * card.front + cv::Scalar(0, 0, 0, 204), {})), "tooDark");
}

/// Paper in strong light saturates in places, as a patch of glare does; print is still seen on it.
TEST_F(DocumentAnalyzerTest, TellsWhitePaperFromGlare) {
  for (const bool isFront : {true, false}) {
    const auto card = tests::drawCard(isFront ? 1 : 0, tests::holder(0), "person_a.jpg");
    const cv::Mat& side = isFront ? card.front : card.back;
    for (const double gain : {1.02, 1.05, 1.08}) {
      for (const double fall : {0.0, 0.15}) {
        cv::Mat lit;
        side.convertTo(lit, CV_32FC4);
        for (int column = 0; column < lit.cols; ++column)
          lit.col(column) *= gain - fall * column / lit.cols;
        lit.convertTo(lit, CV_8UC4);
        cv::insertChannel(cv::Mat(lit.size(), CV_8U, cv::Scalar(255)), lit, 3);
        EXPECT_EQ(flawIn(view(lit, {.noise = 1})), "none")
            << (isFront ? "front" : "back") << " in light " << gain << " to " << gain - fall;
      }
    }
  }
}

TEST_F(DocumentAnalyzerTest, MeasuresTheSharpnessOfAPageAsThatOfACard) {
  const auto card = tests::drawCard(0, tests::holder(0), "person_a.jpg");
  const cv::Mat page = tests::lengthened(card.front, 1.42);
  for (const double blur : {1.0, 2.5}) {
    const auto ofCard = view(card.front, {.background = 2, .blur = blur});
    const auto ofPage = view(page, {.background = 2, .blur = blur});
    EXPECT_NEAR(ofPage.quality.sharpness, ofCard.quality.sharpness, 0.02 * ofCard.quality.sharpness)
        << blur;
  }
}

TEST_F(DocumentAnalyzerTest, ReadsLargerSizesThatFillTheirPicture) {
  const auto card = tests::drawCard(0, tests::holder(2), "person_a.jpg");
  for (const double aspect : {1.42, 1.5}) {
    cv::Mat page;
    cv::cvtColor(tests::lengthened(card.front, aspect), page, cv::COLOR_RGBA2RGB);
    const auto reading = analyzer->analyzeStill(engine::pixelBufferFrom(page));
    ASSERT_TRUE(reading) << aspect << ": " << reading.error().sentence;
    EXPECT_NE(textOf(*reading).find("OKONKWO"), std::string::npos) << aspect;
  }
}

TEST_F(DocumentAnalyzerTest, SeesFingersOverPrintThatItHasRead) {
  const auto card = tests::drawCard(0, tests::holder(0), "person_a.jpg");
  engine::PrintWatch watch;
  const auto seen = view(card.front, {.noise = 2});
  EXPECT_EQ(watch.look(*seen.gray).covered, 0) << "nothing is known yet";
  watch.remember(*seen.gray, analyzer->read(seen).lines);
  const Held moved{.x = 352, .y = 1006, .width = 590, .roll = 1.5, .noise = 5};
  EXPECT_LT(watch.look(*view(card.front, moved).gray).covered, 0.02);
  cv::Mat touched = card.front.clone();
  cv::ellipse(touched, {1000, 420}, {150, 300}, 10, 0, 360, {205, 160, 135, 255}, cv::FILLED);
  EXPECT_GT(watch.look(*view(touched, moved).gray).covered, 0.04);
  cv::Mat other;  // as an outline that is a little wrong makes of shapes between card and page
  cv::resize(engine::grayMat(*view(card.front, moved).gray), other, {1000, 704});
  EXPECT_LT(watch.look(*engine::pixelBufferFrom(other)).covered, 0.02);
  EXPECT_EQ(watch.look(*view(card.back, moved).gray).covered, 0) << "another side";
  EXPECT_EQ(watch.look(*view(touched, moved).gray).covered, 0) << "and so it is forgotten";
}

TEST_F(DocumentAnalyzerTest, TakesWhatWasReadAsReadWhileItLooksTheSameFourTimesInARow) {
  const auto card = tests::drawCard(0, tests::holder(0), "person_a.jpg");
  auto altered = tests::holder(0);
  altered.documentNumber.replace(altered.documentNumber.find('3'), 1, "8");
  const Held moved{.x = 362, .y = 1002, .width = 594, .roll = 1.8, .noise = 5};
  engine::CardView seen = view(card.front, {.roll = 1});
  engine::CardMemory memory;
  engine::PrintWatch watch;
  watch.remember(*seen.gray, analyzer->read(seen, memory).lines);
  EXPECT_GT(watch.look(*view(card.front, moved).gray).leastAlike, 0.96);
  engine::CardView other = view(tests::drawCard(0, altered, "person_a.jpg").front, moved);
  EXPECT_LT(watch.look(*other.gray).leastAlike, 0.96) << "one digit is another";

  // What is claimed here is wrong: only so can a reading be told from what was taken as read.
  other.isAsRead = true;
  other.frame = engine::rgbPicture(engine::grayPicture(other.frame));
  for (int i = 0; i < 6; ++i) {
    const auto reading = analyzer->read(other, memory);
    const char* number = i < 4 ? "D23145890" : "D28145890";
    EXPECT_NE(textOf(reading).find(number), std::string::npos) << i;
    EXPECT_EQ(*reading.data.isReal, i < 4) << i << ": the other one has no colours";
  }
  memory.hasOpenZone = true;
  EXPECT_NE(textOf(analyzer->read(view(card.front, moved), memory)).find("D23145890"),
            std::string::npos)
      << "a zone that is not read yet is looked at each time";
}

TEST(DocumentAnalyzerLoad, NamesWhatIsMissing) {
  auto broken = kTextModels;
  broken.alphabet = "/nowhere.txt";
  for (const auto& [setup, missing] :
       {std::pair<DocumentAnalyzer::Setup, const char*>({.text = broken}, "/nowhere.txt"),
        {{}, "install the program's models again"},
        {{.text = kTextModels, .ocrBFonts = {"/nowhere.otf"}}, "fonts-ocr-b"}}) {
    const auto loaded = DocumentAnalyzer::load(nullptr, setup);
    ASSERT_FALSE(loaded);
    const std::string message = loaded.error().sentence;
    EXPECT_NE(message.find(missing), std::string::npos) << message;
  }
  const auto tables = engine::loadDocumentTables({"/nowhere"});
  ASSERT_FALSE(tables);
  EXPECT_NE(tables.error().sentence.find("There is no folder \"/nowhere\""), std::string::npos);
}

}  // namespace
}  // namespace corvana::tests
