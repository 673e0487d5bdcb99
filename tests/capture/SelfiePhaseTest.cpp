#include "FlowTest.h"
#include "capture/VideoCaptureViewController+SelfieCaptureDelegate.h"

namespace tests {
namespace {

namespace colors = platform::colors;
constexpr platform::UIColor kGreen = corvana::CaptureSessionViewController::greenColor;

class SelfiePhase : public FlowTest {
 protected:
  void expectPrompt(const std::string& prompt, const platform::UIColor& background) {
    EXPECT_EQ(facePrompt(), prompt);
    EXPECT_EQ(world.label("selfieOverlayLabel").textColor(), colors::kWhite);
    EXPECT_EQ(world.view("selfieOverlayLabelView").backgroundColor(), background) << prompt;
    EXPECT_EQ(world.view("selfieOverlayImageView").tintColor(), background) << prompt;
  }
};

TEST_F(SelfiePhase, TurnsEachStateIntoItsPrompt) {
  const auto& strings = SelfieCapture::strings;
  const struct {
    Face::Value state;
    std::string prompt;
    platform::UIColor background;
  } cases[] = {
      {Face::DetectedIssue{"Take off the mask"}, "Take off the mask", colors::kRed},
      {Face::MultipleFacesDetected{}, strings.multipleFacesDetected, colors::kRed},
      {Face::MoveCloser{}, strings.moveCloser, colors::kRed},
      {Face::MoveAway{}, strings.moveAway, colors::kRed},
      {Face::AlignFace{}, strings.alignOval, colors::kRed},
      {Face::CapturingFace{}, strings.capturingFace, kGreen},
  };
  enter();
  for (const auto& [state, prompt, background] : cases) {
    selfie(state);
    expectPrompt(prompt, background);
  }
  selfie(Face::DetectingFace{});
  EXPECT_EQ(facePrompt(), "");
  EXPECT_EQ(world.text("selfieOverlayLabel"), strings.capturingFace) << "only hidden";
  EXPECT_EQ(world.view("selfieOverlayImageView").tintColor(), colors::kWhite);
}

TEST_F(SelfiePhase, TakesColoursAndFontFromTheHostsTables) {
  SelfieCapture::colors.errorLabelTextColor = colors::kBlack;
  SelfieCapture::colors.errorLabelBackgroundColor = colors::kYellow;
  SelfieCapture::fonts.labelFont = platform::UIFont{"Serif", 21};
  enter();
  selfie(Face::MoveAway{});
  EXPECT_EQ(world.label("selfieOverlayLabel").textColor(), colors::kBlack);
  EXPECT_EQ(world.label("selfieOverlayLabel").font().pointSize, 21);
  EXPECT_EQ(world.view("selfieOverlayLabelView").backgroundColor(), colors::kYellow);
}

TEST_F(SelfiePhase, TellsOfAnotherFaceAfterMoreThanThreeSeconds) {
  enter();
  const auto& strings = SelfieCapture::strings;
  showFace(kStranger);
  expectPrompt(strings.capturingFace, kGreen);
  world.advance(3.0);
  showFace(kStranger);
  expectPrompt(strings.capturingFace, kGreen);
  world.advance(0.01);
  showFace(kStranger);
  expectPrompt(VideoCapture::strings.faceDoesNotMatch, colors::kRed);
  EXPECT_TRUE(world.sounds.played.empty());
  EXPECT_EQ(mode(), VideoCaptureMode::selfieCapture);

  showFace(kHolder);
  expectPrompt(strings.realFace, kGreen);
  EXPECT_EQ(mode(), VideoCaptureMode::idCapture);
}

TEST_F(SelfiePhase, IsNeverPassedWithoutAComparison) {
  const auto staysOut = [this](const char* why) {
    SCOPED_TRACE(why);
    enter();
    showFace(kHolder);
    world.advance(10);
    showFace(kHolder);
    EXPECT_EQ(facePrompt(), VideoCapture::strings.faceDoesNotMatch);
    EXPECT_EQ(mode(), VideoCaptureMode::selfieCapture);
    world.tap("closeButton");
    world.advance(1);
  };
  front.faceImage = nullptr;
  staysOut("no photo on the reference");
  EXPECT_TRUE(decisions.empty());
  front.faceImage = faceImage(kHolder);
  world.bundle.missing = {"facenet.tflite"};
  staysOut("no model");
  EXPECT_FALSE(decisions.front().value);
  EXPECT_TRUE(world.console.lines.empty());
}

TEST_F(SelfiePhase, DrawsOneEllipseMirroredOverTheLiveFace) {
  enter();
  world.recorder().reportLiveFace({10, 10, 10, 10}, {360, 640});
  world.recorder().reportLiveFace({100, 200, 160, 200}, {720, 1280});
  world.advance(0);
  const auto& layers = world.view("captureLabel").root().layer().sublayers();
  ASSERT_EQ(layers.back()->sublayers().size(), 1u);
  const auto& ellipse = dynamic_cast<platform::CAShapeLayer&>(*layers.back()->sublayers()[0]);
  EXPECT_EQ(ellipse.path, platform::CAShapeLayer::Path::ellipse);
  // 50 to 130 on a screen of 360, narrowed to 75 around its middle, seen in a mirror.
  EXPECT_EQ(ellipse.pathRect, (platform::CGRect{232.5, 100, 75, 100}));
  EXPECT_EQ(ellipse.strokeColor, colors::kGreen);
  EXPECT_EQ(ellipse.fillColor, colors::kClear);
  EXPECT_EQ(ellipse.lineWidth, 3);
}

TEST(Mirrored, ReflectsAboutTheVerticalCentreLine) {
  using platform::CGRect;
  EXPECT_EQ(capture::mirrored({0, 5, 100, 7}, {400, 1}), (CGRect{300, 5, 100, 7}));
  EXPECT_EQ(capture::mirrored({300, 5, 100, 7}, {400, 1}), (CGRect{0, 5, 100, 7}));
  EXPECT_EQ(capture::mirrored({150, 5, 100, 7}, {400, 1}), (CGRect{150, 5, 100, 7}));
  EXPECT_EQ(capture::mirrored({-50, 0, 100, 1}, {400, 1}), (CGRect{350, 0, 100, 1}));
}

}  // namespace
}  // namespace tests
