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

TEST_F(ReadingPhase, FramesGoToTheRecorderAndSoundToTheFilmThenToTheRecogniser) {
  begin();
  const auto sample = devices::silentSample(world.loop.now(), platform::seconds(0.1));
  world.mediaDevices.camera->push(sample);
  world.mediaDevices.microphone->push(sample);
  world.advance(0);
  EXPECT_EQ(world.recorder().framesReceived(), 1);
  EXPECT_EQ(world.recorder().audioCalls(), (std::vector<std::string>{"write", "append"}));
}

}  // namespace
}  // namespace tests
