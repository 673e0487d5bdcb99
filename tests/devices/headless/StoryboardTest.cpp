#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "corvana/CaptureSessionViewController.h"
#include "support/TestWorld.h"

namespace {

using platform::UIViewController;

/// A camera screen that wants some of what the scene of the retry screen has.
class AnyController final : public corvana::CaptureSessionViewController {
 public:
  using CaptureSessionViewController::CaptureSessionViewController;
  void declareOutlets(platform::OutletBinder& binder) override {
    binder.outlet("imageView", picture);
    binder.action("retry", [this] { ++actions; });
    binder.action("cancel", [this] { actions += 100; });
  }

  platform::Outlet<platform::UIView> picture;
  int actions = 0;
};

TEST(HeadlessStoryboard, ConnectsOutletsActionsAndPreview) {
  tests::TestWorld world;
  world.factories["VideoRetryViewController"] = [](platform::Environment& environment) {
    return std::make_shared<AnyController>(environment);
  };
  const auto controller = std::dynamic_pointer_cast<AnyController>(
      world.bundle.storyboard(world.environment, "VideoCapture")
          ->instantiateViewController("VideoRetryViewController"));
  ASSERT_TRUE(controller);
  EXPECT_EQ(controller->picture->frame(), (platform::CGRect{120, 120, 120, 120}));
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

}  // namespace
