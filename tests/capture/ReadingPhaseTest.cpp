#include "FlowTest.h"

namespace tests {
namespace {

class ReadingPhase : public FlowTest {};

TEST_F(ReadingPhase, ShowsTheTimeOfTheOptionsWhenTheScreenWasBuilt) {
  VideoCapture::strings.doneButton = "Finished";
  const std::pair<int, const char*> cases[] = {
      {0, "0:00"}, {59, "0:59"}, {65, "1:05"}, {90, "1:30"}, {600, "10:00"}};
  for (const auto& [seconds, shown] : cases) {
    VideoCapture::options.readTextCountdownSeconds = seconds;
    enter();
    VideoCapture::options.readTextCountdownSeconds = 99;
    EXPECT_EQ(world.button("doneButton").title(), "Finished");
    EXPECT_FALSE(world.tap("doneButton")) << "its overlay is not to be seen yet";
    reachReading();
    EXPECT_EQ(world.text("readingTextCountdownLabel"), shown);
    hear(text);
    EXPECT_TRUE(world.tap("doneButton"));
    world.advance(30);
    expectAccepted();
    results.clear();
  }
}

TEST_F(ReadingPhase, FramesGoToTheRecorderAndSoundToTheFilmThenToTheRecogniser) {
  enter();
  reachReading();
  const auto sample = devices::silentSample(world.loop.now(), platform::seconds(0.1));
  world.mediaDevices.camera->push(sample);
  world.mediaDevices.microphone->push(sample);
  world.advance(0);
  EXPECT_EQ(world.recorder().framesReceived(), 1);
  EXPECT_EQ(world.recorder().audioCalls(), (std::vector<std::string>{"write", "append"}));
}

}  // namespace
}  // namespace tests
