#include "FlowTest.h"

namespace corvana::tests {
namespace {

class Entry : public FlowTest {};

TEST_F(Entry, RecordsNoDecisionWhereNothingIsCompared) {
  front.faceImage = nullptr;
  enter();
  showFace(kHolder);
  EXPECT_TRUE(decisions.empty());
  showSide(front);
  ASSERT_EQ(decisions.size(), 1u);
  EXPECT_EQ(decisions[0].name, std::string("frontText"));
}

TEST_F(Entry, TwoEntriesShareNothing) {
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
  EXPECT_TRUE(world.mediaDevices.camera->isRunning());
  world.tap("closeButton");
  world.advance(1);
  EXPECT_EQ(&world.topmost(), world.root.get());
  EXPECT_FALSE(world.mediaDevices.camera->isRunning());
}

TEST_F(Entry, TellsAScreenOfItsCameraWhichRunsAsLongAsItIsThere) {
  struct Screen final : corvana::CaptureSessionViewController {
    using CaptureSessionViewController::CaptureSessionViewController;
    void captureSessionDidStartRunning() override { told(); }
    std::function<void()> told;
  };
  bool ran = false;
  auto screen = std::make_shared<Screen>(world.environment, world.host);
  screen->told = [&] { ran = world.mediaDevices.camera->isRunning(); };
  screen->viewWillAppear(false);
  world.advance(0);
  EXPECT_TRUE(ran);
  screen.reset();
  world.advance(0);
  EXPECT_FALSE(world.mediaDevices.camera->isRunning()) << "nor does it outlive the screen";
  EXPECT_EQ(world.host.positions(), std::vector{corvana::CameraPosition::back});
}

TEST(StateNames, AreThoseOfTheModes) {
  EXPECT_STREQ(corvana::nameOf(VideoCaptureMode::liveFaceLost), "liveFaceLost");
}

}  // namespace
}  // namespace corvana::tests
