#include "engine/recorder/RecorderFixture.h"
#include "engine/vision/OpenMouth.h"

namespace corvana::tests {
namespace {

std::function<void(Observation&)> showFace(engine::LivenessVerdict::Kind kind, double seconds) {
  return [=](Observation& observation) {
    showGoodFace(observation);
    const bool isLiving = kind == engine::LivenessVerdict::Kind::living;
    observation.selfie->liveness = engine::LivenessVerdict{
        kind,
        {},
        platform::seconds(seconds),
        {{"blink", engine::LivenessSign::SpeaksFor::life, 0.3, 0.7, isLiving}}};
  };
}

TEST_F(RecorderTest, HoldsTheSelfieBackUntilTheFaceIsBelievedAliveAndAsksForSignsInTurn) {
  using Kind = engine::LivenessVerdict::Kind;
  analyzer->fill = showFace(Kind::undecided, 2.4);
  film(1.5);
  EXPECT_EQ(heard, Names{"capturingFace"});
  analyzer->fill = showFace(Kind::undecided, 2.6);
  film(0.3);
  analyzer->fill = showFace(Kind::undecided, 5.6);
  film(0.3);
  analyzer->fill = showFace(Kind::spoof, 0);
  film(0.3);
  EXPECT_EQ(issues, (Names{"Blink with both eyes", "Turn your head a little",
                           "Show your own face, not a picture of it"}));
  EXPECT_EQ(countHeard("selfieSuccess"), 0);
  analyzer->fill = showFace(Kind::living, 3);
  film(0.2);
  EXPECT_EQ(countHeard("selfieSuccess"), 1);
  EXPECT_EQ(noted, (Names{"asked", "blink", "spoof", "blink", "living"}));
}

TEST_F(RecorderTest, AsksForNoSignOfLifeWhileOneBeginsNorTakesBackForItWhatItAsked) {
  const auto undecided = showFace(engine::LivenessVerdict::Kind::undecided, 2.6);
  const auto beginning = [&](Observation& observation) {
    undecided(observation);
    observation.selfie->liveness->isBeginning = true;
  };
  analyzer->fill = beginning;
  film(0.5);
  EXPECT_EQ(heard, Names{"capturingFace"});
  analyzer->fill = undecided;
  film(0.3);
  analyzer->fill = beginning;
  film(0.3);
  EXPECT_EQ(heard, (Names{"capturingFace", "detectedIssue"}));
}

TEST_F(RecorderTest, WithoutLivenessNobodyHasToShowIt) {
  corvana::SelfieCapture::options.liveness = corvana::SelfieCapture::Liveness::off;
  analyzer->fill = showFace(engine::LivenessVerdict::Kind::spoof, 0);
  film(1.2);
  corvana::SelfieCapture::options = {};
  EXPECT_EQ(heard, (Names{"capturingFace", "selfieSuccess"}));
}

std::function<void(Observation&)> compareWith(std::optional<double> distance,
                                              corvana::DocumentSide side) {
  return [=](Observation& observation) {
    showCard(side)(observation);
    observation.person = engine::PersonCheck{distance};
  };
}

TEST_F(RecorderTest, LosesTheFaceThatTwiceInARowIsNotTheSelfies) {
  recorder->setMode(VideoCaptureMode::idCapture);
  const auto front = corvana::DocumentSide::front;
  for (const double distance : {0.6, 0.2, 0.6}) {
    analyzer->fill = compareWith(distance, front);
    film(0.1);
    analyzer->fill = showCard(front);
    film(0.5);
  }
  EXPECT_EQ(countHeard("liveFaceLost"), 0) << "never twice in a row";
  analyzer->fill = compareWith(0.6, front);
  film(0.1);
  EXPECT_EQ(countHeard("liveFaceLost"), 1);
  EXPECT_EQ(recorder->mode(), VideoCaptureMode::liveFaceLost);
  EXPECT_EQ(noted, Names(4, "samePerson"));
}

TEST_F(RecorderTest, TakesNoCardAndNoReadingFromAFaceThatCannotBeJudged) {
  recorder->setMode(VideoCaptureMode::idCapture);
  analyzer->fill = compareWith({}, corvana::DocumentSide::front);
  film(4.8);
  const long before = countHeard("idSuccess");
  EXPECT_GT(before, 0);
  film(2);
  EXPECT_LE(countHeard("idSuccess"), before + 1);
  analyzer->fill = compareWith(0.2, corvana::DocumentSide::front);
  film(1);
  EXPECT_GT(countHeard("idSuccess"), before + 1) << "it looked up again";

  analyzer->fill = compareWith({}, corvana::DocumentSide::front);
  film(5.5);
  EXPECT_EQ(countHeard("liveFaceLost"), 0) << "a person may look at the card";
  recorder->setMode(VideoCaptureMode::readingText);
  film(0.4);
  EXPECT_EQ(countHeard("liveFaceLost"), 0) << "the text still fades in";
  film(0.4);
  EXPECT_EQ(countHeard("liveFaceLost"), 1);
}

std::function<void(Observation&)> failToJudge(engine::FaceFlaw flaw) {
  return [=](Observation& observation) {
    showCard(corvana::DocumentSide::front)(observation);
    observation.person = engine::PersonCheck{{}, engine::FaceFlawFound{flaw, 40, 30}};
  };
}

TEST_F(RecorderTest, TellsWhyTheFaceCannotBeJudgedWhileThereIsTimeToMendIt) {
  recorder->setMode(VideoCaptureMode::idCapture);
  analyzer->fill = failToJudge(engine::FaceFlaw::turnedAway);
  film(2.3);
  EXPECT_EQ(hints, Names{}) << "a person may look at the card";
  film(0.5);
  EXPECT_EQ(hints, Names{"faceTurnedAway"});
  analyzer->fill = failToJudge(engine::FaceFlaw::blurred);
  film(0.1);
  analyzer->fill = failToJudge(engine::FaceFlaw::turnedAway);
  film(0.2);
  EXPECT_EQ(hints, Names{"faceTurnedAway"}) << "a single look may err";
  analyzer->fill = failToJudge(engine::FaceFlaw::hidden);
  film(0.5);
  EXPECT_EQ(hints, (Names{"faceTurnedAway", "faceHidden"}));
  analyzer->fill = compareWith(0.2, corvana::DocumentSide::front);
  film(0.2);
  EXPECT_EQ(hints, (Names{"faceTurnedAway", "faceHidden", "none"}));
  EXPECT_EQ(countHeard("liveFaceLost"), 0);
}

TEST_F(RecorderTest, TellsOfTheFaceWhileTheTextIsReadButNotWhileItFadesIn) {
  recorder->setMode(VideoCaptureMode::idCapture);
  analyzer->fill = failToJudge(engine::FaceFlaw::tooDark);
  film(2.2);
  recorder->setMode(VideoCaptureMode::readingText);
  film(0.45);
  EXPECT_EQ(hints, Names{}) << "2.5 s are over, but the text still fades in";
  film(0.2);
  EXPECT_EQ(hints, Names{"faceTooDark"});
  film(2.5);
  EXPECT_EQ(countHeard("liveFaceLost"), 1);
  EXPECT_EQ(hints.back(), "none") << "no hint outlives the loss";
}

TEST_F(RecorderTest, TellsOfAFaceThatIsOutOfSightHalfWayToItsLossAndOfTheCardFirst) {
  recorder->setMode(VideoCaptureMode::idCapture);
  analyzer->fill = faceLostFor(900);
  film(0.2);
  EXPECT_EQ(hints, Names{});
  analyzer->fill = faceLostFor(1100);
  film(0.2);
  EXPECT_EQ(hints, Names{"faceOutOfSight"});
  analyzer->fill = [](Observation& observation) {
    faceLostFor(1100)(observation);
    observation.document.emplace().surroundings = 0.1;
  };
  film(0.6);
  EXPECT_EQ(hints, (Names{"faceOutOfSight", "tooDark"}));
}

/// A tenth of a second of a voice, or of none.
platform::CMSampleBufferRef sound(platform::TimePoint time, std::int16_t amplitude) {
  auto buffer = std::make_shared<platform::CMSampleBuffer>();
  buffer->presentationTime = time;
  buffer->sampleRate = 8000;
  buffer->channels = 1;
  for (int i = 0; i < 800; ++i)
    buffer->samples.push_back(static_cast<std::int16_t>(i % 40 < 20 ? amplitude : -amplitude));
  return buffer;
}

TEST_F(RecorderTest, NotesAVoiceThatIsHeardWhileTheLipsRestAndLosesNobodyForIt) {
  for (const bool dubbed : {false, true}) {
    noted.clear();
    recorder->setMode(VideoCaptureMode::readingText);
    int looks = 0;
    analyzer->fill = [&](Observation& observation) {
      showGoodFace(observation);
      observation.mouth = openMouth(dubbed || ++looks % 4 < 2 ? 0.1 : 0.4);
    };
    for (int i = 0; i < 50; ++i) {
      recorder->videoWriter().writeAudio(sound(loop.now(), i < 10 ? 20 : 5000));
      film(0.1);
    }
    EXPECT_EQ(std::ranges::count(noted, "lipsAtRest"), dubbed ? 1 : 0);
    EXPECT_EQ(countHeard("liveFaceLost"), 0);
    recorder->stopVideoWriter(nullptr);
    EXPECT_EQ(std::ranges::count(noted, "lipsAtRest"), dubbed ? 2 : 1) << "at the end in any case";
    recorder->retry();
  }
}

/// Set before the recorder is made.
struct ActiveLiveness {
  ActiveLiveness() {
    corvana::SelfieCapture::options.liveness = corvana::SelfieCapture::Liveness::active;
  }
  ~ActiveLiveness() { corvana::SelfieCapture::options = {}; }
};

/// A recorder that has tasks for the person, and one who does what they are told, or does not.
class ActiveRecorderTest : private ActiveLiveness, public RecorderTest {
 protected:
  /// Shows a living face that does what the screen says.
  void obey(Observation& observation) {
    stare(observation);
    if (heard.empty() || heard.back() != "detectedIssue") return;
    auto& head = *observation.selfie->head;
    const std::string& told = issues.back();
    const auto& words = corvana::SelfieCapture::strings;
    if (told == words.turnLeft) head.pose.yaw = 20;
    if (told == words.turnRight) head.pose.yaw = -20;
    if (told == words.lookUp) head.pose.pitch = -14;
    if (told == words.comeNearer) head.width *= 1.3;
    if (told == words.blinkTwice && ++looks_ % 5 < 2) head.lids = {0.3, 0.1, 0.1, 0.6};
  }
  static void stare(Observation& observation) {
    showFace(engine::LivenessVerdict::Kind::living, 3)(observation);
    if (observation.selfie) observation.selfie->head = engine::HeadLook{{}, 300, {1, 0.3, 0.3}};
  }
  long countNoted(const std::string& name) const { return std::ranges::count(noted, name); }

 private:
  int looks_ = 0;
};

TEST_F(ActiveRecorderTest, TheSelfieWaitsForThreeTasksThatAreDoneInOrder) {
  const Names drawn = noted;
  ASSERT_EQ(drawn.size(), 3U);
  analyzer->fill = [this](Observation& o) { obey(o); };
  film(12);
  EXPECT_GT(countHeard("selfieSuccess"), 0);
  EXPECT_EQ(countHeard("selfieFailed"), 0);
  Names tasks;
  for (const std::string& name : noted) {
    if (name != "living" && name != "blink") tasks.push_back(name);
  }
  const Names inOrder{drawn[0], drawn[1], drawn[2], drawn[0], drawn[0],
                      drawn[1], drawn[1], drawn[2], drawn[2]};
  EXPECT_EQ(tasks, inOrder) << "drawn, then asked and done";
  EXPECT_EQ(issues.back(), "Look straight into the camera") << "back to rest before the selfie";
}

TEST_F(ActiveRecorderTest, AFaceThatDoesNothingFailsAndIsAskedForOtherTasksTheNextTime) {
  analyzer->fill = [](Observation& o) { stare(o); };
  film(12.8);
  EXPECT_EQ(countHeard("selfieSuccess"), 0);
  EXPECT_EQ(countHeard("selfieFailed"), 2) << "said again until it is answered";
  recorder->stopVideoWriter(nullptr);
  const Names before(noted.begin(), noted.begin() + 3);
  noted.clear();
  recorder->retry();
  ASSERT_EQ(noted.size(), 3U);
  EXPECT_NE(noted, before);
  analyzer->fill = [this](Observation& o) { obey(o); };
  film(12);
  EXPECT_GT(countHeard("selfieSuccess"), 0);
}

TEST_F(ActiveRecorderTest, TheTimeOutIsLongerByTheTasksAndNothingIsAskedOfAFraud) {
  analyzer->fill = [](Observation& o) {
    showFace(engine::LivenessVerdict::Kind::spoof, 0)(o);
    o.selfie->head = engine::HeadLook{{}, 300, {1, 0.3, 0.3}};
  };
  film(1.5);
  EXPECT_EQ(issues, Names{"Show your own face, not a picture of it"});
  analyzer->fill = [](Observation& o) { o.selfie.emplace(); };
  film(5);
  heard.clear();
  film(32.5);
  EXPECT_EQ(countHeard("selfieTimedOut"), 0);
}

}  // namespace
}  // namespace corvana::tests
