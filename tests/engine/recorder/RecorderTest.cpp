#include <algorithm>

#include <gtest/gtest.h>

#include "engine/recorder/FakeRecorderWorld.h"

namespace tests {
namespace {

using corvana::VideoCaptureMode;
using engine::DocumentView;
using engine::Observation;
using engine::SelfieView;
using Names = std::vector<std::string>;

void showGoodFace(Observation& observation) {
  observation.liveFace = platform::CGRect{200, 300, 300, 400};
  if (observation.task.mode != VideoCaptureMode::selfieCapture) return;
  observation.selfie = SelfieView{};
  observation.selfie->verdict = engine::SelfieVerdict::good;
  observation.selfie->selfie = corvana::Selfie{};
}

corvana::DetectedData readSide(corvana::DocumentSide side) {
  corvana::DetectedData data;
  data.type = "IDENTITY_CARD";
  data.side = side;
  data.ocrStrings = {"TEXT"};
  return data;
}

std::function<void(Observation&)> showCard(corvana::DocumentSide side) {
  return [side](Observation& observation) {
    showGoodFace(observation);
    if (observation.task.mode != VideoCaptureMode::idCapture) return;
    observation.document = DocumentView{};
    observation.document->verdict = engine::CardVerdict::found;
    observation.document->reading = readSide(side);
  };
}

class RecorderTest : public testing::Test {
 protected:
  std::shared_ptr<RecorderWorld> world = RecorderWorld::make();

  void TearDown() override { EXPECT_EQ(world->contract->breaches(), Names{}); }
  long countHeard(const std::string& name) const { return std::ranges::count(world->heard, name); }
};

TEST_F(RecorderTest, LooksTenTimesASecondAndFilmsEveryFrame) {
  world->film(2);
  EXPECT_EQ(world->analyzer->looks, 20);
  EXPECT_EQ(world->openFilm->counters().videoFramesWritten, 60U);
}

TEST_F(RecorderTest, SucceedsAfterASteadyFaceAndThenTwiceASecondAtMost) {
  world->analyzer->fill = showGoodFace;
  world->film(0.8);
  EXPECT_EQ(world->heard, Names{"capturingFace"});
  world->film(4);
  const long successes = countHeard("selfieSuccess");
  EXPECT_GE(successes, 5);
  EXPECT_LE(successes, 9);
  for (std::size_t i = 2; i < world->heardAt.size(); ++i) {
    EXPECT_GE(world->heardAt[i] - world->heardAt[i - 1], std::chrono::milliseconds(500));
  }
}

TEST_F(RecorderTest, AnInterruptedFaceStartsOver) {
  world->analyzer->fill = showGoodFace;
  world->film(0.7);
  world->analyzer->fill = [](Observation& o) { o.selfie = SelfieView{}; };
  world->film(0.2);
  world->analyzer->fill = showGoodFace;
  world->film(0.7);
  EXPECT_EQ(world->heard, (Names{"capturingFace", "detectingFace", "capturingFace"}));
}

TEST_F(RecorderTest, SaysThatTheSelfieTimedOutUntilItIsAnsweredDespiteSuccesses) {
  world->analyzer->fill = showGoodFace;
  world->film(22.5);
  EXPECT_EQ(Names(world->heard.end() - 3, world->heard.end()), Names(3, "selfieTimedOut"));
  world->recorder->stopVideoWriter(nullptr);
  const auto said = world->heard.size();
  world->film(30);
  EXPECT_EQ(world->heard.size(), said);
}

TEST_F(RecorderTest, EachSideIsDetectedAndClassifiedBeforeItSucceeds) {
  world->recorder->setMode(VideoCaptureMode::idCapture);
  world->analyzer->fill = showCard(corvana::DocumentSide::front);
  world->film(0.4);
  ASSERT_GE(world->heard.size(), 4U);
  EXPECT_EQ(Names(world->heard.begin(), world->heard.begin() + 4),
            (Names{"detectingBox", "detectedBox", "classifiedDocument", "idSuccess"}));
  EXPECT_EQ(countHeard("idSuccess"), 1);
  world->heard.clear();
  world->analyzer->fill = showCard(corvana::DocumentSide::back);
  world->film(1);
  const auto success = std::ranges::find(world->heard, "idSuccess");
  ASSERT_NE(success, world->heard.end());
  EXPECT_EQ(*(success - 1), "classifiedDocument");
  const auto box = std::ranges::find(world->heard, "detectedBox");
  ASSERT_LT(box, success);
  EXPECT_EQ(*(box - 1), "detectingBox");
}

TEST_F(RecorderTest, CardsTimeOutFromTheAcceptedSelfie) {
  world->film(5);
  world->recorder->setMode(VideoCaptureMode::idCapture);
  world->analyzer->fill = showCard(corvana::DocumentSide::front);
  world->film(29);
  EXPECT_EQ(countHeard("idTimedOut"), 0);
  world->film(2);
  EXPECT_EQ(world->heard.back(), "idTimedOut");
}

TEST_F(RecorderTest, ALostFaceIsToldOnceTheGraceHasPassedAndOnlyAfterTheSelfie) {
  const auto lose = [](Observation& o) { o.liveFaceLostFor = std::chrono::milliseconds(2100); };
  world->analyzer->fill = lose;
  world->film(1);
  EXPECT_EQ(countHeard("liveFaceLost"), 0);
  world->recorder->setMode(VideoCaptureMode::readingText);
  world->analyzer->fill = [](Observation& o) { o.liveFaceLostFor = std::chrono::seconds(2); };
  world->film(1);
  EXPECT_EQ(countHeard("liveFaceLost"), 0);
  world->analyzer->fill = lose;
  world->film(1);
  EXPECT_EQ(countHeard("liveFaceLost"), 1);
  EXPECT_EQ(world->recorder->mode(), VideoCaptureMode::liveFaceLost);
}

TEST_F(RecorderTest, RetryBeginsANewFilmInTheSelfieModeWithAFreshTimeOut) {
  world->film(15);
  world->recorder->setMode(VideoCaptureMode::idCapture);
  world->recorder->stopVideoWriter(nullptr);
  world->pass(10);
  world->heard.clear();
  world->recorder->retry();
  EXPECT_EQ(world->recorder->mode(), VideoCaptureMode::selfieCapture);
  world->film(19);
  EXPECT_EQ(countHeard("selfieTimedOut"), 0);
  world->film(2);
  EXPECT_EQ(countHeard("selfieTimedOut"), 1);
  EXPECT_EQ(world->films.log, (Names{"open film.partial.mp4", "finish", "open film.partial.mp4"}));
  EXPECT_FALSE(std::filesystem::exists(world->folder / "film.mp4"));
}

TEST_F(RecorderTest, IsQuietWhileDelayedStepsOfTheScreenAreUnderWay) {
  world->analyzer->fill = showGoodFace;
  world->recorder->stopVideoWriter(nullptr);
  world->recorder->retry();
  world->film(1.9);
  EXPECT_EQ(countHeard("selfieSuccess"), 0);
  world->film(0.3);
  EXPECT_EQ(countHeard("selfieSuccess"), 1);
  world->analyzer->fill = [](Observation& o) { o.liveFaceLostFor = std::chrono::seconds(3); };
  world->recorder->setMode(VideoCaptureMode::readingText);
  world->film(0.4);
  EXPECT_EQ(countHeard("liveFaceLost"), 0);
  world->film(0.3);
  EXPECT_EQ(countHeard("liveFaceLost"), 1);
}

TEST_F(RecorderTest, AnObservationOfTheLastRunIsDropped) {
  world->analyzer->fill = showGoodFace;
  world->film(1.5);
  world->recorder->stopVideoWriter(nullptr);
  world->heard.clear();
  world->recorder->retry();
  world->pass(0.5);
  EXPECT_EQ(world->heard, Names{});
}

TEST_F(RecorderTest, StoppingGivesTheFinishedFilmEachTimeItIsAsked) {
  std::vector<corvana::FileURL> answers;
  const auto answer = [&](const auto& film) { answers.push_back(film.value()); };
  world->recorder->stopVideoWriter(answer);
  world->recorder->stopVideoWriter(answer);
  world->pass(0);
  ASSERT_EQ(answers.size(), 2U);
  EXPECT_EQ(answers[0], world->folder / "film.mp4");
  EXPECT_EQ(answers[1], answers[0]);
  EXPECT_TRUE(std::filesystem::exists(answers[0]));
}

TEST_F(RecorderTest, ARecorderThatGoesClosesItsFilmAndTellsNobody) {
  world->film(1);
  world->recorder.reset();
  world->pass(0);
  EXPECT_EQ(world->films.log.back(), "finish");
  EXPECT_TRUE(std::filesystem::exists(world->folder / "film.partial.mp4"));
  EXPECT_EQ(world->heard, Names{});
}

TEST_F(RecorderTest, AFilmThatCantBeReopenedFailsTheStop) {
  world->films.fault = "The disk is full.";
  world->recorder->retry();
  std::string message;
  world->recorder->stopVideoWriter(
      [&](const auto& film) { message = film.error().localizedDescription(); });
  world->pass(0);
  EXPECT_EQ(message, "The disk is full.");
}

}  // namespace
}  // namespace tests
