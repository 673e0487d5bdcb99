#include <functional>

#include "FlowTest.h"

namespace tests {
namespace {

using platform::UIColor;
using platform::UIFont;

class Retry : public FlowTest {
 protected:
  bool isAsked() { return world.topmostScene() == "VideoRetryViewController"; }
  void answer(const char* button) {
    ASSERT_TRUE(world.tap(button));
    world.advance(1);
  }
  /// What brings the retry screen up, and what it says.
  struct Case {
    const char* message;
    std::function<void()> fail;
  };
  const Case selfieTimedOut{SelfieCapture::strings.retryScreenText.c_str(),
                            [this] { selfie(Face::TimedOut{}); }};
  const Case selfieFailed{SelfieCapture::strings.retryScreenText.c_str(),
                          [this] { selfie(Face::Failed{}); }};
  const Case cardTimedOut{IDCapture::strings.retryScreenText.c_str(), [this] {
                            passSelfie();
                            card(ID::TimedOut{});
                          }};
  const Case backFailed{IDCapture::strings.retryScreenText.c_str(), [this] {
                          passSelfie();
                          passFront();
                          card(ID::Failed{});
                        }};
  const Case lostAtTheCard{"Live Face Lost. Please try again", [this] {
                             passSelfie();
                             world.recorder().reportLiveFaceLost();
                           }};
  const Case lostWhileReading{"Live Face Lost. Please try again", [this] {
                                reachReading();
                                world.recorder().reportLiveFace(std::nullopt, {}, mode());
                              }};
  const Case silent{"Voice does not match text. Please try again", [this] {
                      reachReading();
                      world.advance(21);
                    }};
  const Case all[7] = {selfieTimedOut, selfieFailed,     cardTimedOut, backFailed,
                       lostAtTheCard,  lostWhileReading, silent};
};

TEST_F(Retry, OfEveryKindLeadsThroughTheWholeFlowAgain) {
  enter();
  for (const Case& test : all) {
    SCOPED_TRACE(test.message);
    const int stopped = world.recorder().count("stopVideoWriter");
    const int restarted = world.recorder().count("retry");
    test.fail();
    world.advance(1);
    ASSERT_TRUE(isAsked());
    EXPECT_EQ(world.topmost().modalPresentationStyle(),
              platform::UIModalPresentationStyle::fullScreen);
    EXPECT_EQ(world.text("label"), test.message);
    EXPECT_EQ(world.text("captureLabel"), SelfieCapture::strings.captureSelfie);
    EXPECT_EQ(world.recorder().count("stopVideoWriter"), stopped + 1);
    EXPECT_EQ(world.recorder().count("retry"), restarted);
    EXPECT_FALSE(world.speech().isRunning());
    EXPECT_FALSE(world.mediaDevices.microphone->isRunning());
    answer("retryButton");
    EXPECT_EQ(world.recorder().count("retry"), restarted + 1);
    EXPECT_EQ(world.recorder().count("stopVideoWriter"), stopped + 1);
    EXPECT_TRUE(world.speech().isRunning()) << "the host has restarted it";
  }
  EXPECT_EQ(world.host.recordersMade(), 1);
  EXPECT_EQ(mode(), VideoCaptureMode::selfieCapture);
  reachReading();
  world.tap("doneButton");
  EXPECT_EQ(world.imageView("idImageView").image()->name(), "overlay_portrait_id_front")
      << "at once";
  world.advance(1);
  answer("retryButton");
  reachReading();
  EXPECT_TRUE(world.mediaDevices.microphone->isRunning());
  readAndFinish();
  expectAccepted();
  EXPECT_EQ(results[0]->selfie.image, shownFace) << "the last one that was accepted";
}

TEST_F(Retry, ScreenKeepsWhatTheStoryboardDrewAndLetsGoOfWhoAsked) {
  enter();
  selfie(Face::Failed{});
  world.advance(1);
  const auto drawn = faceImage(kHolder);
  const auto screen = std::dynamic_pointer_cast<capture::VideoRetryViewController>(
      world.topmost().shared_from_this());
  ASSERT_NE(screen, nullptr);
  world.imageView("imageView").setImage(drawn);
  screen->viewDidLoad();
  EXPECT_EQ(world.imageView("imageView").image(), drawn);
  EXPECT_TRUE(screen->retryCompletion);
  answer("retryButton");
  EXPECT_FALSE(screen->retryCompletion);
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
  const std::tuple<std::function<void()>, std::string, std::string, double> cases[] = {
      {[this] { selfie(Face::Failed{}); }, "A", "A text", 0},
      {[this] { card(ID::Failed{}); }, "B", "B text", 0.1},
      {[this] { world.recorder().reportLiveFaceLost(); }, "A", "Live Face Lost. Please try again",
       0},
      {[this] { reachReading(), world.advance(21); }, "A",
       "Voice does not match text. Please try again", 0}};
  for (const auto& [fail, name, message, level] : cases) {
    SCOPED_TRACE(message);
    fail();
    world.advance(1);
    EXPECT_EQ(world.text("label"), message);
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
}  // namespace tests
