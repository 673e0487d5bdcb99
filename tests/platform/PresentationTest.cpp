#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/uikit/Controls.h"
#include "support/TestWorld.h"

namespace corvana::tests {
namespace {

using platform::UIAlertController;
using platform::UIModalPresentationStyle;
using platform::UIViewController;
using Log = std::vector<std::string>;

/// Notes its appearance steps under its name.
class Screen final : public UIViewController {
 public:
  Screen(platform::Environment& environment, std::string name, Log& log)
      : UIViewController(environment), name_(std::move(name)), log_(log) {
    setModalPresentationStyle(UIModalPresentationStyle::fullScreen);
  }
  void viewDidLoad() override { note("loaded"); }
  void viewWillAppear(bool) override { note("will appear"); }
  void viewDidAppear(bool) override { note("did appear"); }
  void viewWillDisappear(bool) override { note("will disappear"); }
  void viewDidDisappear(bool) override { note("did disappear"); }

 private:
  void note(const char* step) { log_.push_back(name_ + " " + step); }
  std::string name_;
  Log& log_;
};

class Presentation : public testing::Test {
 protected:
  std::shared_ptr<Screen> screen(const std::string& name) {
    return std::make_shared<Screen>(world.environment, name, log);
  }
  std::shared_ptr<UIAlertController> makeAlert() {
    auto alert = std::make_shared<UIAlertController>(world.environment, "Error", "message");
    alert->addAction({"OK", platform::UIAlertAction::Style::standard,
                      [this] { log.push_back("alert answered"); }});
    return alert;
  }
  platform::Block noting(const std::string& line) {
    return [this, line] { log.push_back(line); };
  }
  std::shared_ptr<Screen> shown(const std::string& name, UIViewController& on) {
    auto s = screen(name);
    on.present(s, true);
    world.advance(1);
    log.clear();
    return s;
  }

  tests::TestWorld world;
  Log log;
};

TEST_F(Presentation, FullScreenHidesItsPresenterAndGivesItBackBeforeTheCompletion) {
  const auto a = shown("a", *world.root);
  const auto b = screen("b");
  a->present(b, true, noting("presented"));
  world.advance(1);
  EXPECT_EQ(log, (Log{"b loaded", "a will disappear", "b will appear", "a did disappear",
                      "b did appear", "presented"}));
  log.clear();
  b->dismiss(true, noting("dismissed"));
  world.advance(1);
  EXPECT_EQ(log, (Log{"b will disappear", "a will appear", "b did disappear", "a did appear",
                      "dismissed"}));
}

TEST_F(Presentation, AnAlertLeavesItsPresenterInPlaceAndAnswersOnce) {
  const auto a = shown("a", *world.root);
  const auto alert = makeAlert();
  a->present(alert, true);
  EXPECT_FALSE(alert->choose(0)) << "it is not there yet";
  world.advance(1);
  EXPECT_FALSE(alert->choose(1)) << "it has one button";
  EXPECT_TRUE(alert->choose(0));
  alert->choose(0);
  EXPECT_EQ(log, Log{}) << "the answer comes after the alert has gone";
  world.advance(1);
  EXPECT_EQ(log, Log{"alert answered"});
  EXPECT_EQ(&world.topmost(), a.get());
  EXPECT_FALSE(alert->choose(0));
}

TEST_F(Presentation, IsRefusedWithAWarningOnAScreenThatPresentsOrIsGoingAwayOrGone) {
  const auto a = shown("a", *world.root);
  a->present(makeAlert(), true);
  a->present(screen("b"), true, noting("never"));
  EXPECT_EQ(world.console.lines.size(), 1u);
  world.advance(1);
  world.alert()->choose(0);
  world.advance(1);

  a->dismiss(true, noting("dismissed"));
  a->present(screen("c"), true);
  world.advance(1);
  a->present(screen("d"), true);
  world.advance(1);
  EXPECT_EQ(log, (Log{"alert answered", "a will disappear", "a did disappear", "dismissed"}));
  ASSERT_EQ(world.console.lines.size(), 3u);
  for (const std::string& line : world.console.lines)
    EXPECT_NE(line.find("WARNING"), std::string::npos);
  EXPECT_EQ(&world.topmost(), world.root.get());

  world.root->present(a, false);
  a->present(screen("e"), false);
  EXPECT_EQ(world.console.lines.size(), 3u) << "presented anew, it presents again";
}

TEST_F(Presentation, DismissingAScreenTakesAwayItsNavigationControllerAndAllAbove) {
  const auto inner = screen("inner");
  const auto navigation =
      std::make_shared<platform::UINavigationController>(world.environment, inner);
  navigation->setModalPresentationStyle(UIModalPresentationStyle::fullScreen);
  world.root->present(navigation, true);
  world.advance(1);
  EXPECT_EQ(log, (Log{"inner loaded", "inner will appear", "inner did appear"}));
  EXPECT_EQ(&world.topmost(), inner.get());
  const auto above = shown("above", *inner);
  above->present(makeAlert(), true);
  world.advance(1);

  inner->dismiss(true, noting("first"));
  inner->dismiss(true, noting("second"));
  world.advance(1);
  EXPECT_EQ(log, (Log{"above will disappear", "above did disappear", "first", "second"}));
  EXPECT_EQ(&world.topmost(), world.root.get());
  EXPECT_EQ(world.root->presentedViewController(), nullptr);
}

TEST_F(Presentation, ADismissalDuringThePresentationEndsItInOrder) {
  const auto a = shown("a", *world.root);
  const auto b = screen("b");
  a->present(b, true, noting("presented"));
  world.advance(0.1);
  b->dismiss(true, noting("dismissed"));
  world.advance(1);
  EXPECT_EQ(log,
            (Log{"b loaded", "a will disappear", "b will appear", "b will disappear",
                 "a will appear", "presented", "b did disappear", "a did appear", "dismissed"}));
  EXPECT_TRUE(a->isTopmost());
}

TEST_F(Presentation, AViewIsLoadedAtItsFirstUseOnlyAndBeforeItsControllerIsTold) {
  const auto loads = [this](UIViewController& owner) {
    log.push_back(owner.isViewLoaded() ? "too late" : "made");
    return std::make_shared<platform::UIView>();
  };
  screen("unseen")->setViewLoader(loads);
  EXPECT_EQ(log, Log{});
  const auto a = screen("a");
  a->setViewLoader(loads);
  const platform::UIView& view = a->view();
  EXPECT_EQ(log, (Log{"made", "a loaded"}));
  world.root->present(a, false);
  EXPECT_EQ(&a->view(), &view);
  EXPECT_EQ(std::ranges::count(log, "made"), 1);
}

TEST_F(Presentation, ALayersObserverHearsOfEachChangeOfDepthBelowItsRoot) {
  const auto outer = std::make_shared<platform::UIView>();
  const auto inner = std::make_shared<platform::UIView>();
  const auto a = screen("a");
  a->view().addSubview(outer);
  outer->addSubview(inner);
  int changes = 0;
  a->view().layer().setObserver([&] { ++changes; });
  inner->layer().setZPosition(2);
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(inner->layer().zPosition(), 2);
}

TEST_F(Presentation, AControlAnswersOnlyWhereItCanBeTouched) {
  const auto a = screen("a");
  const auto outer = std::make_shared<platform::UIView>();
  const auto button = std::make_shared<platform::UIButton>();
  outer->addSubview(button);
  a->view().addSubview(outer);
  button->setAction([] {});
  EXPECT_FALSE(button->touchUpInside()) << "its screen is not shown";
  world.root->present(a, false);
  EXPECT_TRUE(button->touchUpInside());
  for (const double alpha : {0.009, 0.01}) {
    outer->setAlpha(alpha);
    EXPECT_EQ(button->touchUpInside(), alpha == 0.01) << "it can hardly be seen";
  }
  for (const bool off : {true, false}) {
    outer->setHidden(off);
    EXPECT_EQ(button->touchUpInside(), !off);
  }
  button->setEnabled(false);
  EXPECT_FALSE(button->touchUpInside());
  button->setEnabled(true);
  a->present(makeAlert(), false);
  EXPECT_FALSE(button->touchUpInside()) << "an alert lies above it";
}

TEST_F(Presentation, AnAnimationShowsItsEndAtOnceButIsTouchedAndCompletesWhenItIsOver) {
  const auto a = screen("a");
  const auto fading = std::make_shared<platform::UIButton>();
  const auto still = std::make_shared<platform::UIButton>();
  for (const auto& button : {fading, still}) {
    button->setAction([] {});
    a->view().addSubview(button);
  }
  world.root->present(a, false);
  log.clear();
  platform::UIView::animate(
      world.environment, platform::seconds(0.5), [&] { fading->setAlpha(0.9); }, noting("done"));
  EXPECT_EQ(fading->alpha(), 0.9);
  world.advance(0.49);
  still->setAlpha(0.5);  // no part of the animation
  EXPECT_FALSE(fading->touchUpInside());
  EXPECT_TRUE(still->touchUpInside());
  EXPECT_EQ(log, Log{});
  world.advance(0.01);
  EXPECT_TRUE(fading->touchUpInside());
  EXPECT_EQ(log, Log{"done"});
}

}  // namespace
}  // namespace corvana::tests
