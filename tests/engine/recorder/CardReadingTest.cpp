#include <gtest/gtest.h>

#include "TestCards.h"
#include "engine/recorder/VisionFrameAnalyzer.h"
#include "platform/foundation/VirtualRunLoop.h"

namespace corvana::tests {
namespace {

/// Looks at a card, ten times a second, as the recorder does.
class CardReadingTest : public testing::Test {
 protected:
  void SetUp() override { load({}); }
  void load(const std::optional<std::string>& knownType) {
    const std::filesystem::path models = ENGINE_RESOURCES;
    analyzer = engine::VisionFrameAnalyzer::load(
                   {.faceDetector = models / "face_detection_short_range.tflite",
                    .faceLandmarks = models / "face_landmark.tflite",
                    .faceEmbedding = MODULE_RESOURCES "/facenet.tflite",
                    .text = engine::NetworkTextReader::Models::inFolder(models),
                    .documents = std::make_shared<engine::DocumentTables>(
                        *engine::loadDocumentTables({models / "documents"})),
                    .knownType = knownType,
                    .readQueue = engine::VisionFrameAnalyzer::makeReadQueue(loop)})
                   .value();
  }
  engine::DocumentView look(double x) {
    auto frame = std::make_shared<platform::CMSampleBuffer>();
    frame->presentationTime = platform::TimePoint(platform::seconds(0.1 * looks++));
    frame->image = hold(card.front, {.x = x}).picture;
    engine::AnalysisTask task;
    task.mode = corvana::VideoCaptureMode::idCapture;
    task.idOverlayFrame = {20, 400, 320, 202};
    task.screenSize = {360, 640};
    return analyzer->analyze(frame, task).document.value();
  }
  void finishReading() { loop.advance(engine::VisionFrameAnalyzer::kUsualReading); }

  const CardSides card = drawCard(0, holder(0), "person_a.jpg");
  platform::VirtualRunLoop loop;
  std::shared_ptr<engine::VisionFrameAnalyzer> analyzer;
  int looks = 0;
};

TEST_F(CardReadingTest, LetsLooksGoOnMeanwhile) {
  look(360);
  for (int i = 0; i < 8; ++i) {
    const auto view = look(360);
    EXPECT_TRUE(view.quality) << i;
    EXPECT_FALSE(view.reading) << i << ": it is still being read";
  }
  finishReading();
  const auto view = look(360);
  ASSERT_TRUE(view.reading);
  EXPECT_EQ(view.reading->type, "IDENTITY_CARD_FRONT");
  EXPECT_TRUE(view.portrait);
  EXPECT_FALSE(look(360).reading) << "it is told once";
}

TEST_F(CardReadingTest, TakesAnUntitledFrontForTheKindThatTheCardWasCapturedAs) {
  load("RESIDENCE_PERMIT_FRONT");
  look(360);
  look(360);
  finishReading();
  EXPECT_EQ(look(360).reading.value().type, "RESIDENCE_PERMIT_FRONT");
}

TEST_F(CardReadingTest, TellsNothingOfACardThatHasMovedMeanwhile) {
  look(360);
  look(360);
  look(400);
  finishReading();
  for (int i = 0; i < 4; ++i)
    EXPECT_FALSE(look(400).reading) << i << ": another one may lie there now";
  finishReading();
  EXPECT_TRUE(look(400).reading) << "which has been read by itself";
}

}  // namespace
}  // namespace corvana::tests
