#include "corvana/Notifications.h"
#include "engine/recorder/RecorderFixture.h"

namespace corvana::tests {
namespace {

TEST_F(RecorderTest, SucceedsAgainAndAgainAfterAFaceThatWasSteadyWithoutInterruption) {
  analyzer->fill = showGoodFace;
  film(0.7);
  analyzer->fill = [](Observation& o) { o.selfie.emplace(); };
  film(0.2);
  analyzer->fill = showGoodFace;
  film(0.7);
  EXPECT_EQ(heard, (Names{"capturingFace", "detectingFace", "capturingFace"}));
  film(4);
  EXPECT_GE(countHeard("selfieSuccess"), 5);
}

TEST_F(RecorderTest, SaysThatTheSelfieTimedOutUntilItIsAnsweredDespiteSuccesses) {
  analyzer->fill = showGoodFace;
  film(22.5);
  EXPECT_EQ(Names(heard.end() - 3, heard.end()), Names(3, "selfieTimedOut"));
  recorder->stopVideoWriter(nullptr);
  const auto said = heard.size();
  film(30);
  EXPECT_EQ(heard.size(), said);
}

TEST_F(RecorderTest, EachSideSucceedsAndTheCardsTimeOutFromTheAcceptedSelfie) {
  film(5);
  recorder->setMode(VideoCaptureMode::idCapture);
  heard.clear();
  analyzer->fill = showCard(corvana::DocumentSide::front);
  film(0.4);
  EXPECT_EQ(countHeard("idSuccess"), 1);
  heard.resize(4);
  EXPECT_EQ(heard, (Names{"detectingBox", "detectedBox", "classifiedDocument", "idSuccess"}));
  heard.clear();
  analyzer->fill = showCard(corvana::DocumentSide::back);
  film(28.6);
  EXPECT_EQ(heard.front(), "detectingBox") << "a side of its own";
  EXPECT_GT(countHeard("idSuccess"), 5);
  EXPECT_EQ(countHeard("idTimedOut"), 0);
  film(2);
  EXPECT_EQ(heard.back(), "idTimedOut");
}

/// A card in its place that is seen so well.
std::function<void(Observation&)> showCardOf(const engine::CardQuality& quality) {
  return [quality](Observation& observation) {
    showCard(corvana::DocumentSide::front)(observation);
    if (observation.document) observation.document->quality = quality;
  };
}

std::function<void(Observation&)> showPlace(engine::CardVerdict verdict) {
  return [verdict](Observation& observation) {
    showGoodFace(observation);
    observation.document.emplace().verdict = verdict;
  };
}

TEST_F(RecorderTest, TellsWithinHalfASecondWhatIsWrongWithTheCard) {
  const struct {
    const char* told;
    std::function<void(Observation&)> wrong;
  } cases[] = {{"idMoveAway", showPlace(engine::CardVerdict::moveAway)},
               {"idMoveCloser", showPlace(engine::CardVerdict::moveCloser)},
               {"alignRectangle", showPlace(engine::CardVerdict::alignRectangle)},
               {"tooMuchGlare", showCardOf({.glare = 0.05})},
               {"blurred", showCardOf({.sharpness = 0.1})},
               {"tooDark", showCardOf({.brightness = 0.1})},
               {"covered", showCardOf({.coveredPrint = 0.1})}};
  recorder->setMode(VideoCaptureMode::idCapture);
  for (const auto& [told, wrong] : cases) {
    SCOPED_TRACE(told);
    analyzer->fill = showCardOf({});
    film(1);
    EXPECT_GE(countHeard("idSuccess"), 1);
    heard.clear();
    hints.clear();
    analyzer->fill = wrong;
    film(0.1);
    EXPECT_FALSE(countHeard(told) || !hints.empty()) << "a single look may err";
    film(0.34);
    EXPECT_EQ(countHeard(told) + std::ranges::count(hints, told), 1);
    heard.clear();
    film(2);
    EXPECT_EQ(countHeard("idSuccess"), 0);
    EXPECT_EQ(countHeard("classifiedDocument"), 0);
  }
  hints.clear();
  analyzer->fill = showCardOf({.sharpness = 0.1});
  film(1);
  recorder->setMode(VideoCaptureMode::readingText);
  EXPECT_EQ(hints, (Names{"blurred", "none"})) << "no hint outlives its phase";
}

TEST_F(RecorderTest, StrayLooksNeitherTellOfAFlawNorHideOne) {
  recorder->setMode(VideoCaptureMode::idCapture);
  const auto lookLike = [&](std::initializer_list<bool> blurredLooks) {
    for (const bool blurred : blurredLooks) {
      analyzer->fill = showCardOf({.sharpness = blurred ? 0.1 : 0.3});
      film(0.1);
    }
  };
  lookLike({false, true, false, true, false, true, false, true, false, true, false, false});
  EXPECT_EQ(hints, Names{});
  lookLike({true, false, true, true, true});
  EXPECT_EQ(hints, Names{"blurred"});
  lookLike({false, false, false});
  EXPECT_EQ(hints, (Names{"blurred", "none"}));
}

TEST_F(RecorderTest, ACopyIsToldAndNotAcceptedAsFarAsTheOptionSays) {
  using Reject = corvana::IDCapture::RejectUnreal;
  const struct {
    Reject option;
    float score;
    bool accepted;
  } cases[] = {{Reject::off, 1.0F, true},
               {Reject::sure, 0.95F, false},
               {Reject::sure, 0.6F, true},
               {Reject::all, 0.6F, false},
               {Reject::all, 0.3F, true}};
  const auto standing = corvana::IDCapture::options;
  recorder->setMode(VideoCaptureMode::idCapture);
  for (const auto& [option, score, accepted] : cases) {
    SCOPED_TRACE(testing::Message() << static_cast<int>(option) << " at " << score);
    corvana::IDCapture::options.rejectUnreal = option;
    analyzer->fill = showPlace(engine::CardVerdict::none);
    film(1);
    heard.clear();
    hints.clear();
    analyzer->fill = [score = score](Observation& observation) {
      showCardOf({})(observation);
      observation.document->reading->realness = corvana::RealnessScores{.screenScore = score};
    };
    film(1);
    EXPECT_EQ(countHeard("idSuccess") > 0, accepted);
    EXPECT_GT(countHeard("classifiedDocument"), 0);
    EXPECT_EQ(hints, accepted ? Names{} : Names{"copy"});
  }
  corvana::IDCapture::options = standing;
}

TEST_F(RecorderTest, TheDarkIsToldAlsoWhereNoCardIsSeenInIt) {
  recorder->setMode(VideoCaptureMode::idCapture);
  analyzer->fill = [](Observation& o) { o.document.emplace().surroundings = 0.1; };
  film(0.5);
  EXPECT_EQ(hints, Names{"tooDark"});
}

TEST_F(RecorderTest, ALostFaceIsToldOnceTheGraceHasPassedAndOnlyAfterTheSelfie) {
  analyzer->fill = faceLostFor(2100);
  film(1);
  recorder->setMode(VideoCaptureMode::readingText);
  analyzer->fill = faceLostFor(2000);
  film(1);
  EXPECT_EQ(countHeard("liveFaceLost"), 0);
  analyzer->fill = faceLostFor(2100);
  film(1);
  EXPECT_EQ(countHeard("liveFaceLost"), 1);
  EXPECT_EQ(recorder->mode(), VideoCaptureMode::liveFaceLost);
}

TEST_F(RecorderTest, RetryBeginsANewFilmInTheSelfieModeWithAFreshTimeOut) {
  film(15);
  recorder->setMode(VideoCaptureMode::idCapture);
  recorder->stopVideoWriter(nullptr);
  loop.advance(platform::seconds(10));
  heard.clear();
  recorder->retry();
  EXPECT_EQ(recorder->mode(), VideoCaptureMode::selfieCapture);
  film(19);
  EXPECT_EQ(countHeard("selfieTimedOut"), 0);
  film(2);
  EXPECT_EQ(countHeard("selfieTimedOut"), 1);
  EXPECT_EQ(films.log, (Names{"open film.partial.mp4", "finish", "open film.partial.mp4"}));
  EXPECT_FALSE(std::filesystem::exists(folder / "film.mp4"));
}

TEST_F(RecorderTest, IsQuietWhileDelayedStepsOfTheScreenAreUnderWay) {
  analyzer->fill = showGoodFace;
  recorder->stopVideoWriter(nullptr);
  recorder->retry();
  film(2.2);
  EXPECT_EQ(countHeard("selfieSuccess"), 1) << "at once after the two seconds of the contract";
  analyzer->fill = faceLostFor(3000);
  recorder->setMode(VideoCaptureMode::readingText);
  film(0.7);
  EXPECT_EQ(countHeard("liveFaceLost"), 1);
}

TEST_F(RecorderTest, AnObservationOfTheLastRunIsDropped) {
  analyzer->fill = showGoodFace;
  film(1.5);
  recorder->stopVideoWriter(nullptr);
  heard.clear();
  recorder->retry();
  loop.advance(platform::seconds(0.5));
  EXPECT_EQ(heard, Names{});
}

TEST_F(RecorderTest, StoppingGivesTheFinishedFilmEachTimeItIsAskedOrSaysWhyThereIsNone) {
  std::vector<corvana::FileURL> answers;
  const auto answer = [&](const auto& film) { answers.push_back(film.value()); };
  recorder->stopVideoWriter(answer);
  recorder->stopVideoWriter(answer);
  loop.advance(platform::seconds(0));
  ASSERT_EQ(answers.size(), 2U);
  EXPECT_EQ(answers[0], folder / "film.mp4");
  EXPECT_EQ(answers[1], answers[0]);
  EXPECT_TRUE(std::filesystem::exists(answers[0]));

  films.fault = "The disk is full.";
  recorder->retry();
  std::string message;
  recorder->stopVideoWriter(
      [&](const auto& film) { message = film.error().localizedDescription(); });
  loop.advance(platform::seconds(0));
  EXPECT_EQ(message, "The disk is full.");
  EXPECT_EQ(faults.size(), 1U) << "told at once, not only to who asks";
}

TEST_F(RecorderTest, AFilmThatFailsIsToldOnceAndTheFilmsOfFormerRunsStay) {
  for (int run = 1; run <= 2; ++run) {
    film(1);
    recorder->stopVideoWriter(nullptr);
    recorder->retry();
    loop.advance(platform::seconds(0.1));
  }
  film(1);
  films.appendFault = platform::Fault{"The disk is full.", platform::FaultCause::diskFull};
  film(0.2);
  openFilm->writeAudio(std::make_shared<platform::CMSampleBuffer>());
  recorder.reset();
  loop.advance(platform::seconds(0));
  ASSERT_EQ(faults.size(), 1U);
  EXPECT_EQ(faults[0].cause, platform::FaultCause::diskFull);
  const Names left{"film.run1.mp4", "film.run2.mp4", "film.partial.mp4"};
  for (const auto& name : left)
    EXPECT_TRUE(std::filesystem::exists(folder / name)) << name;
  EXPECT_EQ(openFilm->fileNames(), (Names{left[0], left[1], "film.mp4", left[2]}));
  EXPECT_EQ(openFilm->counters().videoFramesReceived, 96U);
  EXPECT_EQ(openFilm->counters().videoFramesWritten, 90U);
  EXPECT_EQ(openFilm->counters().secondsWritten, 1) << "of the last film";

  const auto other = *engine::Film::make(loop, films, filmSettings);
  EXPECT_EQ(other->fileNames()[0], "film2.mp4");
  EXPECT_EQ(films.log.back(), "open film2.partial.mp4");
}

TEST_F(RecorderTest, FilmsAndLooksLessOftenWhileTheEncoderIsBehindAndNeverNotAtAll) {
  struct Second {
    int waiting;
    int looks;
    unsigned pictures;
  };
  const Second seconds[] = {{20, 10, 30}, {31, 2, 13}, {31, 2, 10}, {4, 2, 10}, {3, 10, 12},
                            {3, 10, 15},  {3, 10, 15}, {3, 10, 21}, {3, 10, 30}};
  unsigned written = 0;
  for (const auto& [waiting, looks, pictures] : seconds) {
    films.waiting = waiting;
    analyzer->looks = 0;
    film(1);
    EXPECT_NEAR(analyzer->looks, looks, 1) << waiting;
    EXPECT_NEAR(openFilm->counters().videoFramesWritten - written, pictures, 2) << waiting;
    written = openFilm->counters().videoFramesWritten;
  }
  EXPECT_EQ(openFilm->counters().videoFramesWritten + openFilm->framesLeftOut(), 30 * 9U);
  recorder.reset();
  loop.advance(platform::seconds(0));
  EXPECT_EQ(films.log.back(), "finish");
  EXPECT_TRUE(std::filesystem::exists(folder / "film.partial.mp4"));
  EXPECT_EQ(heard, Names{});
}

/// A recorder in debug mode, and what it posts.
class DebugDataTest : public RecorderTest {
 protected:
  DebugDataTest() { corvana::VideoCapture::options.isDebugMode = true; }
  ~DebugDataTest() override { corvana::VideoCapture::options = {}; }

  /// The keys of the first notification.
  Names keys() const {
    Names names;
    for (const auto& [key, value] : *posted.at(0).userInfo)
      names.push_back(key);
    return names;
  }
  void look(std::function<void(Observation&)> fill) {
    posted.clear();
    analyzer->fill = std::move(fill);
    film(0.2);
  }
  std::unique_ptr<platform::NotificationCenter::Observation> listen(const char* name) {
    return notificationCenter.addObserver(name, [this](const auto& n) { posted.push_back(n); });
  }

  std::vector<platform::Notification> posted;
  const std::unique_ptr<platform::NotificationCenter::Observation> listening[3] = {
      listen(corvana::kSelfieCaptureDebugData), listen(corvana::kIDCaptureDebugData),
      listen(corvana::kIDCaptureMode)};
};

TEST_F(DebugDataTest, OfAFaceHoldsWhatWasMeasuredAndNoOtherNumber) {
  look([](Observation& o) { o.selfie.emplace(); });
  EXPECT_EQ(keys(), Names{"fullSize"});
  look([](Observation& o) {
    showGoodFace(o);
    o.selfie->measures = {0.25F, 0.5F, 0.75F};
  });
  EXPECT_EQ(keys(), (Names{"faceLivenessScore", "faceRect", "fullSize", "leftEyeOpenProbability",
                           "rightEyeOpenProbability"}));
  const platform::Notification& face = posted[0];
  EXPECT_EQ(face.name, corvana::kSelfieCaptureDebugData);
  EXPECT_EQ(*face.value<platform::CGRect>("faceRect"), (platform::CGRect{200, 300, 300, 400}));
  EXPECT_EQ(*face.value<platform::CGSize>("fullSize"), (platform::CGSize{720, 1280}));
  EXPECT_EQ(*face.value<float>("leftEyeOpenProbability"), 0.25F);
  EXPECT_EQ(*face.value<float>("rightEyeOpenProbability"), 0.5F);
  EXPECT_EQ(*face.value<float>("faceLivenessScore"), 0.75F);
}

TEST_F(DebugDataTest, OfACardHoldsItsPlacesAndWhatItsPrintSpeaksForOnceItWasRead) {
  recorder->setMode(VideoCaptureMode::idCapture);
  look(showCard(corvana::DocumentSide::front));
  EXPECT_TRUE(posted.empty()) << "no outline";
  look([](Observation& o) { o.document.emplace().location = {10, 20, 300, 200}; });
  EXPECT_EQ(keys(), Names{"debugData"});
  EXPECT_EQ(posted[0].name, corvana::kIDCaptureDebugData);
  auto data = *posted[0].value<corvana::DebugData>("debugData");
  EXPECT_EQ(data.fullSize, (platform::CGSize{720, 1280}));
  EXPECT_EQ(data.documentLocation, (platform::CGRect{10, 20, 300, 200}));
  EXPECT_FALSE(data.faceLocation || data.topClassifierResults || data.realnessScores);

  look([](Observation& o) {
    showCard(corvana::DocumentSide::front)(o);
    o.document->location = {10, 20, 300, 200};
    o.document->portrait = {30, 40, 50, 60};
    o.document->familyMatches = {{"DRIVING_LICENCE", 0.5F}};
  });
  data = *posted[0].value<corvana::DebugData>("debugData");
  EXPECT_EQ(data.faceLocation, (platform::CGRect{30, 40, 50, 60}));
  EXPECT_EQ(data.topClassifierResults, (engine::FamilyMatches{{"DRIVING_LICENCE", 0.5F}}));
  EXPECT_FALSE(data.realnessScores) << "this host does not judge it";
}

TEST_F(DebugDataTest, IsPostedInDebugModeOnly) {
  corvana::VideoCapture::options.isDebugMode = false;
  look(showGoodFace);
  recorder->setMode(VideoCaptureMode::idCapture);
  film(0.2);
  EXPECT_TRUE(posted.empty());
}

}  // namespace
}  // namespace corvana::tests
