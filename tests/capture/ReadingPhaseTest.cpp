#include "FlowTest.h"

namespace tests {
namespace {

class ReadingPhase : public FlowTest {
 protected:
  void begin() {
    enter();
    reachReading();
  }
  std::string countdown() { return world.text("readingTextCountdownLabel"); }
  bool asksToTryAgain() { return world.topmostScene() == "VideoRetryViewController"; }
  void finish() {
    world.tap("doneButton");
    world.advance(1);
  }
};

TEST_F(ReadingPhase, CountsDownAndEndsOneSecondAfterZero) {
  const std::pair<int, const char*> cases[] = {
      {0, "0:00"}, {59, "0:59"}, {65, "1:05"}, {90, "1:30"}, {600, "10:00"}};
  for (const auto& [seconds, shown] : cases) {
    SCOPED_TRACE(shown);
    VideoCapture::options.readTextCountdownSeconds = seconds;
    begin();
    EXPECT_EQ(countdown(), shown);
    world.advance(seconds + 0.9);
    EXPECT_EQ(countdown(), "0:00");
    EXPECT_FALSE(asksToTryAgain());
    world.advance(0.1);
    EXPECT_EQ(world.recorder().count("stopVideoWriter"), 1);
    world.advance(1);
    EXPECT_TRUE(asksToTryAgain());
    EXPECT_EQ(countdown(), shown) << "the full time again";
    world.tap("cancelButton");
    world.advance(2);
  }
}

TEST_F(ReadingPhase, TheCountdownIsThatOfTheOptionsWhenTheScreenWasBuilt) {
  enter();
  VideoCapture::options.readTextCountdownSeconds = 99;
  reachReading();
  EXPECT_EQ(countdown(), "0:20");
}

TEST_F(ReadingPhase, TheDoneButtonEndsItAtOnceAndNotBefore) {
  VideoCapture::strings.doneButton = "Finished";
  enter();
  EXPECT_EQ(world.button("doneButton").title(), "Finished");
  EXPECT_FALSE(world.tap("doneButton")) << "its overlay is not to be seen yet";
  reachReading();
  hear(text);
  EXPECT_TRUE(world.tap("doneButton"));
  world.advance(30);
  expectAccepted();
  EXPECT_EQ(world.recorder().count("stopVideoWriter"), 1);
}

TEST_F(ReadingPhase, KeepsTheBestShareHeardWhenever) {
  const struct {
    std::vector<std::string> heard;
    float threshold;
    bool passes;
  } cases[] = {
      {{"seven grey"}, 2.0F / 3, true},  // equal passes
      {{"seven grey"}, 0.67F, false},
      {{"seven grey herons", "something else"}, 1, true},
      {{}, 0, true},
      {{"SEVEN grey s e v e n"}, 1.01F, true},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.threshold);
    VideoCapture::options.readTextWordMatchThreshold = test.threshold;
    results.clear();
    enter();
    for (const std::string& heard : test.heard)
      hear(heard);  // already during the selfie
    reachReading();
    finish();
    EXPECT_EQ(results.size(), test.passes ? 1u : 0u);
    if (!test.passes) world.tap("cancelButton");
    world.advance(2);
  }
}

TEST_F(ReadingPhase, ATextWithoutWordsChangesNoShare) {
  text = "  ";
  VideoCapture::options.readTextWordMatchThreshold = 0.01F;
  begin();
  hear("anything");
  finish();
  EXPECT_TRUE(asksToTryAgain());
  EXPECT_EQ(decisions.back().value, 0.0);
}

TEST_F(ReadingPhase, HighlightsHeardWordsInDebugModeOnly) {
  begin();
  hear("grey her");
  EXPECT_FALSE(world.label("readingTextLabel").attributedText());
  VideoCapture::options.isDebugMode = true;
  hear("GREY her");
  const auto& shown = world.label("readingTextLabel").attributedText();
  ASSERT_TRUE(shown);
  EXPECT_EQ(shown->string, text);
  using Run = platform::NSAttributedString::Run;
  const auto yellow = platform::colors::kYellow;
  EXPECT_EQ(shown->runs, (std::vector<Run>{{6, 4, yellow}, {11, 3, yellow}}));
}

TEST_F(ReadingPhase, AnErrorOfTheRecogniserIsToldAndTheCountdownGoesOn) {
  begin();
  world.speech().fail("No words could be made out.");
  world.advance(1);
  ASSERT_NE(world.alert(), nullptr);
  EXPECT_EQ(world.alert()->title(), "Speech Recognition Error");
  EXPECT_EQ(world.alert()->message(), "No words could be made out.");
  ASSERT_EQ(world.alert()->actions().size(), 1u);
  EXPECT_EQ(world.alert()->actions()[0].title, "OK");
  EXPECT_EQ(world.alert()->actions()[0].style, platform::UIAlertAction::Style::cancel);
  EXPECT_EQ(countdown(), "0:19");
  world.alert()->choose(0);
  world.advance(1);
  readAndFinish();
  expectAccepted();
}

TEST_F(ReadingPhase, AnErrorOfTheFilmIsTheCallersOnceTheScreenHasGone) {
  world.host.setup.film = tl::unexpected(IDError("The disk is full."));
  begin();
  hear(text);
  world.tap("doneButton");
  world.advance(0.3);
  EXPECT_TRUE(results.empty());
  world.advance(1);
  expectFailed("The disk is full.");
  EXPECT_EQ(&world.topmost(), world.root.get());
}

TEST_F(ReadingPhase, WithoutASelfieTheCallerIsToldAndTheScreenStays) {
  enter();
  passFront();
  passBack();
  readAndFinish();
  expectFailed("videoIdResultSelfie == nil");
  EXPECT_EQ(world.topmostScene(), "VideoCaptureViewController");
  world.tap("closeButton");
  world.advance(1);
  EXPECT_EQ(results.size(), 1u);
}

TEST_F(ReadingPhase, ClosingWhileTheFilmIsBeingClosedAnswersOnce) {
  world.host.setup.stopLatency = platform::seconds(2);
  begin();
  hear(text);
  world.tap("doneButton");
  world.tap("doneButton");
  world.tap("closeButton");
  world.advance(5);
  expectFailed(IDError::Strings::canceled);
}

TEST_F(ReadingPhase, MicrophoneBuffersGoToTheFilmThenToTheRecogniser) {
  begin();
  world.mediaDevices.microphone->push(
      devices::silentSample(world.loop.now(), platform::seconds(0.1)));
  world.advance(0);
  EXPECT_EQ(world.recorder().audioCalls(), (std::vector<std::string>{"write", "append"}));
}

}  // namespace
}  // namespace tests
