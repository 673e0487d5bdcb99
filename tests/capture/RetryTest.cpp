#include <functional>

#include "FlowTest.h"

namespace corvana::tests {
namespace {

using platform::UIColor;
using platform::UIFont;

class Retry : public FlowTest {
 protected:
  void answer(const char* button) {
    ASSERT_TRUE(world.tap(button));
    world.advance(1);
  }
};

TEST_F(Retry, LeadsToTheSelfieThatIsAcceptedLast) {
  enter();
  reachReading();
  world.tap("doneButton");
  world.advance(1);
  answer("retryButton");
  EXPECT_EQ(mode(), VideoCaptureMode::selfieCapture);
  reachReading();
  readAndFinish();
  expectAccepted();
  EXPECT_EQ(results[0]->selfie.image, shownFace);
}

TEST_F(Retry, ScreenKeepsWhatTheStoryboardDrewAndLetsGoOfWhoAsked) {
  enter();
  selfie(Face::Failed{});
  world.advance(1);
  const auto drawn = faceImage(kHolder);
  const auto screen = std::dynamic_pointer_cast<capture::VideoRetryViewController>(
      world.topmost().shared_from_this());
  ASSERT_NE(screen, nullptr);
  EXPECT_EQ(screen->modalPresentationStyle(), platform::UIModalPresentationStyle::fullScreen);
  world.imageView("imageView").setImage(drawn);
  screen->viewDidLoad();
  EXPECT_EQ(world.imageView("imageView").image(), drawn);
  EXPECT_TRUE(screen->retryCompletion);
  EXPECT_FALSE(world.mediaDevices.camera->isRunning());
  answer("retryButton");
  EXPECT_FALSE(screen->retryCompletion);
  EXPECT_TRUE(world.mediaDevices.camera->isRunning());
}

/// Gives every value of a table that a retry screen shows, made from one number.
template <class Capture>
void fillTables(double level) {
  const std::string name(1, static_cast<char>('A' + static_cast<int>(level * 10)));
  Capture::strings.retryScreenText = name + " text";
  Capture::strings.retryButtonText = name + " again";
  Capture::strings.cancelButtonText = name + " no";
  Capture::images.retryScreenImage = std::make_shared<platform::UIImage>(nullptr, name);
  Capture::colors.retryScreenBackgroundColor = UIColor::white(level, 0.1);
  Capture::colors.retryScreenLabelTextColor = UIColor::white(level, 0.2);
  Capture::colors.retryScreenImageTintColor = UIColor::white(level, 0.3);
  Capture::colors.retryScreenButtonTextColor = UIColor::white(level, 0.4);
  Capture::colors.retryScreenButtonBackgroundColor = UIColor::white(level, 0.5);
  Capture::fonts.retryScreenLabelFont = UIFont{name, 10};
  Capture::fonts.retryScreenButtonFont = UIFont{name, 20};
}

TEST_F(Retry, ScreenTakesItsLooksFromTheCaptureThatFailed) {
  fillTables<SelfieCapture>(0);
  fillTables<IDCapture>(0.1);
  enter();
  const std::tuple<std::function<void()>, std::string, double> cases[] = {
      {[this] { selfie(Face::Failed{}); }, "A", 0}, {[this] { card(ID::Failed{}); }, "B", 0.1}};
  for (const auto& [fail, name, level] : cases) {
    fail();
    world.advance(1);
    EXPECT_EQ(world.text("label"), name + " text");
    EXPECT_EQ(world.topmost().view().backgroundColor(), UIColor::white(level, 0.1));
    EXPECT_EQ(world.label("label").textColor(), UIColor::white(level, 0.2));
    EXPECT_EQ(world.label("label").font().family, name);
    EXPECT_EQ(world.imageView("imageView").image()->name(), name);
    EXPECT_EQ(world.imageView("imageView").tintColor(), UIColor::white(level, 0.3));
    EXPECT_EQ(world.button("retryButton").title(), name + " again");
    EXPECT_EQ(world.button("cancelButton").title(), name + " no");
    for (const char* button : {"retryButton", "cancelButton"}) {
      EXPECT_EQ(world.button(button).titleColor(), UIColor::white(level, 0.4));
      EXPECT_EQ(world.button(button).backgroundColor(), UIColor::white(level, 0.5));
      EXPECT_EQ(world.button(button).titleLabel()->font(), (UIFont{name, 20}));
    }
    answer("retryButton");
  }
}

}  // namespace
}  // namespace corvana::tests
