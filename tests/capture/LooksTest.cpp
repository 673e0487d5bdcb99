#include "FlowTest.h"
#include "capture/VideoCaptureViewController+SelfieCaptureDelegate.h"
#include "corvana/Geometry.h"

namespace corvana::tests {
namespace {

namespace colors = platform::colors;
class Looks : public FlowTest {};

TEST_F(Looks, ColoursAndFontComeFromTheHostsTables) {
  SelfieCapture::colors.errorLabelTextColor = colors::kBlack;
  SelfieCapture::colors.errorLabelBackgroundColor = colors::kYellow;
  SelfieCapture::fonts.labelFont = platform::UIFont{"Serif", 21};
  IDCapture::fonts.labelFont = platform::UIFont{"Sans", 19};
  enter();
  selfie(Face::MoveAway{});
  EXPECT_EQ(world.label("selfieOverlayLabel").textColor(), colors::kBlack);
  EXPECT_EQ(world.label("selfieOverlayLabel").font().pointSize, 21);
  EXPECT_EQ(world.view("selfieOverlayLabelView").backgroundColor(), colors::kYellow);
  card(ID::MoveAway{});
  EXPECT_EQ(world.label("idOverlayLabel").font().pointSize, 19);
}

TEST_F(Looks, OneEllipseLiesOverTheLiveFace) {
  enter();
  world.recorder().reportLiveFace({10, 10, 10, 10}, {360, 640});
  world.recorder().reportLiveFace({100, 200, 160, 200}, {720, 1280});
  world.advance(0);
  const auto& layers = world.view("captureLabel").root().layer().sublayers();
  ASSERT_EQ(layers.back()->sublayers().size(), 1u);
  const auto& ellipse = dynamic_cast<platform::CAShapeLayer&>(*layers.back()->sublayers()[0]);
  EXPECT_EQ(ellipse.path, platform::CAShapeLayer::Path::ellipse);
  EXPECT_EQ(ellipse.fillColor, colors::kClear);
}

TEST_F(Looks, OfTheCardAreTheHostsSilhouettesWhereItHasSome) {
  IDCapture::images.frontSilhouetteImage = std::make_shared<platform::UIImage>(nullptr, "my front");
  IDCapture::images.backSilhouetteImage = std::make_shared<platform::UIImage>(nullptr, "my back");
  enter();
  passSelfie();
  card(ID::DetectingBox{});
  EXPECT_EQ(world.imageView("idImageView").image()->name(), "my front");
  passFront();
  EXPECT_EQ(world.imageView("idImageView").image()->name(), "my back");
  EXPECT_EQ(world.text("captureLabel"), IDCapture::strings.captureBack);
}

TEST_F(Looks, AnAbsentDrawingStandsForTheSideThatLacksIt) {
  for (const bool ofFront : {true, false}) {
    world.bundle.missing = {ofFront ? "overlay_portrait_id_front" : "overlay_landscape_id_back"};
    enter();
    passSelfie();
    passFront();
    EXPECT_EQ(world.text("captureLabel"), IDCapture::strings.captureBack);
    card(ID::MoveAway{});  // which takes the silhouette away
    EXPECT_EQ(world.imageView("idImageView").image(), nullptr);
    EXPECT_EQ(world.text("captureLabel"),
              ofFront ? IDCapture::strings.captureFront : IDCapture::strings.captureBack);
    world.tap("closeButton");
    world.advance(1);
  }
}

/// A screen that plays animations, as the capture screen sees it.
struct Player final : platform::AnimationPlayer, platform::ViewObserver {
  void willAnimate(platform::Duration duration) override {
    played.push_back("fade " + std::to_string(platform::inSeconds(duration)));
  }
  void willFlip(platform::UIView& view, platform::Duration duration) override {
    played.push_back("flip " + view.name() + " " + std::to_string(platform::inSeconds(duration)));
  }
  void viewChanged(platform::UIView&, const char* property) override {
    layouts += property == std::string("layout");
  }
  std::vector<std::string> played;
  int layouts = 0;
};

TEST_F(Looks, ChangesAreAnimatedAndPromptsLaidOutAnew) {
  enter();
  Player player;
  platform::UIView& root = world.view("captureLabel").root();
  world.environment.animations = &player;
  root.setObserver(&player);
  selfie(Face::MoveAway{});
  EXPECT_EQ(player.layouts, 1);
  passSelfie();
  card(ID::MoveAway{});
  EXPECT_EQ(player.layouts, 3);
  passFront();
  passBack();
  EXPECT_EQ(player.played, (std::vector<std::string>{"fade 0.500000", "flip idImageView 1.000000",
                                                     "fade 0.500000"}));
  root.setObserver(nullptr);
  world.environment.animations = nullptr;
}

TEST(Aspect, IsKeptWhetherThePictureFillsTheScreenOrFitsIn) {
  using platform::CGRect;
  const platform::CGSize screen{360, 640};
  EXPECT_EQ(corvana::aspectFill({10, 20, 30, 40}, {100, 100}, screen),
            (CGRect{-76, 128, 192, 256}));
  EXPECT_EQ(corvana::aspectFit({10, 20, 30, 40}, {100, 100}, screen), (CGRect{36, 212, 108, 144}));
  EXPECT_EQ(corvana::aspectFit({10, 20, 30, 40}, {100, 320}, screen), (CGRect{100, 40, 60, 80}));
  EXPECT_EQ(corvana::aspectFill({0, 0, 1, 1}, {1, 1}, screen), (CGRect{-140, 0, 640, 640}));
  for (const platform::CGSize& empty : {platform::CGSize{0, 9}, {9, 0}, {-1, 9}}) {
    EXPECT_EQ(corvana::aspectFill({1, 2, 3, 4}, empty, screen), CGRect());
    EXPECT_EQ(corvana::aspectFit({1, 2, 3, 4}, empty, screen), CGRect());
  }
}

TEST(Mirrored, ReflectsAboutTheVerticalCentreLine) {
  using platform::CGRect;
  EXPECT_EQ(capture::mirrored({0, 5, 100, 7}, {400, 1}), (CGRect{300, 5, 100, 7}));
  EXPECT_EQ(capture::mirrored({300, 5, 100, 7}, {400, 1}), (CGRect{0, 5, 100, 7}));
  EXPECT_EQ(capture::mirrored({150, 5, 100, 7}, {400, 1}), (CGRect{150, 5, 100, 7}));
  EXPECT_EQ(capture::mirrored({-50, 0, 100, 1}, {400, 1}), (CGRect{350, 0, 100, 1}));
}

}  // namespace
}  // namespace corvana::tests
