#include "FlowTest.h"

namespace tests {
namespace {

class StraightRun : public FlowTest {};

TEST_F(StraightRun, EndsInAResultWithEveryFlagTrue) {
  world.host.setup.film = corvana::FileURL("/films/one.mp4");
  enter();
  EXPECT_EQ(world.topmostScene(), "VideoCaptureViewController");
  EXPECT_EQ(world.text("captureLabel"), SelfieCapture::strings.captureSelfie);
  EXPECT_TRUE(world.isVisible("selfieOverlayImageView"));

  selfie(Face::CapturingFace{});
  passSelfie();
  EXPECT_EQ(world.recorder().calls(), std::vector<std::string>{"setMode idCapture"});
  EXPECT_EQ(world.text("captureLabel"), IDCapture::strings.captureFront);
  EXPECT_EQ(facePrompt(), SelfieCapture::strings.realFace);
  EXPECT_FALSE(world.isVisible("selfieOverlayView"));
  EXPECT_TRUE(world.isVisible("idFrameImageView"));

  passFront();
  EXPECT_EQ(world.text("captureLabel"), IDCapture::strings.captureBack);
  EXPECT_EQ(world.imageView("idImageView").image()->name(), "overlay_landscape_id_back");
  EXPECT_FALSE(world.mediaDevices.microphone->isRunning());

  passBack();
  EXPECT_EQ(world.recorder().calls().back(), "setMode readingText");
  EXPECT_EQ(world.text("captureLabel"), "Read Text");
  EXPECT_EQ(world.text("readingTextLabel"), text);
  EXPECT_TRUE(world.isVisible("doneButton"));
  EXPECT_FALSE(world.isVisible("idOverlayView"));
  EXPECT_TRUE(world.mediaDevices.microphone->isRunning());
  EXPECT_EQ(world.sounds.played, std::vector<platform::SystemSoundID>(3, 4095));

  hear("seven gray herons");
  EXPECT_TRUE(results.empty());
  world.advance(21);
  EXPECT_EQ(world.recorder().calls().back(), "stopVideoWriter");
  world.advance(1);
  expectAccepted();
  const capture::VideoIdResult& result = *results[0];
  EXPECT_EQ(result.videoURL, "/films/one.mp4");
  EXPECT_NE(result.selfie.faceImage, nullptr);
  EXPECT_TRUE(result.idToSelfieMatch && result.idToIdPhotoMatch);
  EXPECT_TRUE(result.idFrontDataMatch && result.idBackDataMatch);
  EXPECT_EQ(&world.topmost(), world.root.get());
  EXPECT_FALSE(world.mediaDevices.microphone->isRunning());
  EXPECT_FALSE(world.mediaDevices.camera->isRunning());
  EXPECT_TRUE(world.console.lines.empty());
}

TEST_F(StraightRun, RecordsEachDecisionWithItsNumbers) {
  back.mrz.reset();
  enter();
  reachReading();
  readAndFinish();
  std::vector<std::string> names;
  for (const corvana::Decision& decision : decisions) {
    names.push_back(decision.name);
    EXPECT_TRUE(decision.passed) << decision.name;
  }
  EXPECT_EQ(names, (std::vector<std::string>{"selfieFace", "frontFace", "frontText", "documentType",
                                             "backText", "spokenWords"}));
  EXPECT_EQ(decisions[0].value, 0.0);
  EXPECT_EQ(decisions[0].threshold, VideoCapture::options.idToSelfieMatchThreshold);
  EXPECT_EQ(decisions[5].value, 1.0);
}

TEST_F(StraightRun, RecordsNoDecisionWhereNothingIsCompared) {
  front.faceImage = nullptr;
  enter();
  showFace(kHolder);
  EXPECT_TRUE(decisions.empty());
  showSide(front);
  ASSERT_EQ(decisions.size(), 1u);
  EXPECT_EQ(decisions[0].name, std::string("frontText"));
}

TEST_F(StraightRun, TwoEntriesShareNothing) {
  enter();
  auto& first = *world.host.recorder();
  // The second is presented on the first screen.
  std::vector<Result> second;
  capture::videoIDCapture(world.topmost(), front, back, "other",
                          [&](const Result& result) { second.push_back(result); });
  world.advance(1);
  EXPECT_EQ(world.host.recordersMade(), 2);
  EXPECT_NE(&first, &world.recorder());
  passSelfie();
  EXPECT_EQ(first.mode(), VideoCaptureMode::selfieCapture);
  world.tap("closeButton");
  world.advance(1);
  EXPECT_EQ(second.size(), 1u);
  EXPECT_TRUE(results.empty());
}

class Entry : public FlowTest {};

TEST_F(Entry, IsSilentWhenTheScreenCannotBeBuilt) {
  world.bundle.missing = {"VideoCapture"};
  enter();
  world.bundle.missing.clear();
  const auto factories = std::exchange(world.factories, {});
  enter();
  world.factories = factories;
  world.factories["VideoCaptureViewController"] = [](auto& environment) {
    return std::make_shared<platform::UIViewController>(environment);
  };
  enter();
  EXPECT_EQ(&world.topmost(), world.root.get());
  EXPECT_TRUE(results.empty());
  EXPECT_TRUE(world.console.lines.empty());
}

TEST_F(Entry, HidesTheNavigationBarAndFillsTheScreen) {
  enter();
  auto* navigation =
      dynamic_cast<platform::UINavigationController*>(world.root->presentedViewController());
  ASSERT_NE(navigation, nullptr);
  EXPECT_TRUE(navigation->isNavigationBarHidden());
  EXPECT_EQ(navigation->modalPresentationStyle(), platform::UIModalPresentationStyle::fullScreen);
  EXPECT_EQ(world.topmost().preferredStatusBarStyle(), platform::UIStatusBarStyle::lightContent);
  EXPECT_EQ(world.host.positions(), std::vector{corvana::CameraPosition::front});
}

}  // namespace
}  // namespace tests
