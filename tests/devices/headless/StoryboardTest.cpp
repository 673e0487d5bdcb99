#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "corvana/CaptureSessionViewController.h"
#include "support/TestWorld.h"

namespace {

using platform::UIViewController;

/// A controller whose wishes a test writes down.
class AnyController final : public corvana::CaptureSessionViewController {
 public:
  using Declare = std::function<void(AnyController&, platform::OutletBinder&)>;

  AnyController(platform::Environment& environment, Declare declare)
      : CaptureSessionViewController(environment), declare_(std::move(declare)) {}
  void declareOutlets(platform::OutletBinder& binder) override { declare_(*this, binder); }

  platform::Outlet<platform::UIView> view1;
  platform::Outlet<platform::UILabel> label;
  platform::Outlet<platform::UIButton> button;
  platform::Outlet<platform::NSLayoutConstraint> constraint;
  platform::OutletCollection<platform::UIView> views;
  int actions = 0;

 private:
  Declare declare_;
};

std::shared_ptr<AnyController> build(tests::TestWorld& world, const std::string& scene,
                                     AnyController::Declare declare) {
  world.factories[scene] = [declare](platform::Environment& environment) {
    return std::make_shared<AnyController>(environment, declare);
  };
  return std::dynamic_pointer_cast<AnyController>(
      world.bundle.storyboard(world.environment, "VideoCapture")->instantiateViewController(scene));
}

void offerActions(AnyController& controller, platform::OutletBinder& binder) {
  binder.action("retry", [&] { ++controller.actions; });
  binder.action("cancel", [&] { controller.actions += 100; });
}

TEST(HeadlessStoryboard, ConnectsOutletsActionsAndPreview) {
  tests::TestWorld world;
  const auto controller = build(world, "VideoRetryViewController", [](auto& self, auto& binder) {
    binder.outlet("label", self.label);
    binder.outlet("imageView", self.view1);
    binder.outlet("cancelButton", self.button);
    offerActions(self, binder);
  });
  ASSERT_TRUE(controller);
  EXPECT_EQ(controller->view1->frame(), (platform::CGRect{120, 120, 120, 120}));
  EXPECT_EQ(controller->storyboard(), world.storyboard());
  ASSERT_TRUE(controller->videoPreviewLayer());
  EXPECT_EQ(controller->videoPreviewLayer()->superlayer(), &controller->view().layer());

  world.root->present(controller, true);
  world.advance(1);
  EXPECT_EQ(world.topmostScene(), "VideoRetryViewController");
  EXPECT_TRUE(world.tap("cancelButton"));
  EXPECT_TRUE(world.tap("retryButton"));
  EXPECT_EQ(controller->actions, 101);
}

TEST(HeadlessStoryboard, KnowsNoOtherScene) {
  tests::TestWorld world;
  const auto storyboard = world.bundle.storyboard(world.environment, "VideoCapture");
  EXPECT_EQ(storyboard->instantiateViewController("VideoRetryViewController"), nullptr);
  world.factories["Another"] = [](auto& environment) {
    return std::make_shared<UIViewController>(environment);
  };
  const auto another = world.bundle.storyboard(world.environment, "VideoCapture");
  EXPECT_EQ(another->instantiateViewController("Another"), nullptr);
}

TEST(HeadlessStoryboardDeath, NamesWhatTheSceneOrTheControllerLacks) {
  struct Case {
    const char* message;
    AnyController::Declare declare;
  };
  const Case cases[] = {
      {"VideoRetryViewController.*outlet.*\"nothing\"",
       [](auto& self, auto& binder) { binder.outlet("nothing", self.label); }},
      {"outlet of the right kind.*\"imageView\"",
       [](auto& self, auto& binder) { binder.outlet("imageView", self.label); }},
      {"constraint outlet.*\"wide\"",
       [](auto& self, auto& binder) { binder.constraint("wide", self.constraint); }},
      {"collection.*\"bezels\"",
       [](auto& self, auto& binder) { binder.collection("bezels", self.views); }},
      {"no control for the action \"jump\"",
       [](auto&, auto& binder) { binder.action("jump", [] {}); }},
      {"does not offer the action \"cancel\" of \"cancelButton\"",
       [](auto&, auto& binder) { binder.action("retry", [] {}); }},
  };
  for (const Case& c : cases) {
    EXPECT_DEATH(
        {
          tests::TestWorld world;
          build(world, "VideoRetryViewController", c.declare);
        },
        c.message);
  }
}

TEST(HeadlessStoryboardDeath, UsingAnUnconnectedOutletNamesIt) {
  platform::Outlet<platform::UILabel> outlet;
  outlet.connect("captureLabel", nullptr);
  EXPECT_DEATH(outlet->text(), "captureLabel");
}

}  // namespace
