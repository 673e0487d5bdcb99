#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "devices/headless/FlowReporter.h"
#include "devices/headless/HeadlessPerson.h"
#include "devices/headless/ViewSearch.h"
#include "support/TestWorld.h"

namespace {

using devices::PersonHabits;
using platform::seconds;
using platform::UIViewController;

/// A screen of the storyboard that notes which of its controls were touched.
class PlainScreen final : public UIViewController {
 public:
  PlainScreen(platform::Environment& environment, std::vector<std::string> actions,
              std::vector<std::string>& touched)
      : UIViewController(environment), actions_(std::move(actions)), touched_(touched) {
    setModalPresentationStyle(platform::UIModalPresentationStyle::fullScreen);
  }
  void declareOutlets(platform::OutletBinder& binder) override {
    for (const std::string& action : actions_) {
      binder.action(action, [this, action] {
        touched_.push_back(action);
        if (action != "doneReadingText") dismiss(true);
      });
    }
  }

 private:
  std::vector<std::string> actions_;
  std::vector<std::string>& touched_;
};

class Person : public testing::Test {
 protected:
  Person() {
    world.environment.presentations = &hub;
    offer("VideoCaptureViewController", {"close", "doneReadingText"});
    offer("VideoRetryViewController", {"retry", "cancel"});
  }
  void offer(const std::string& scene, const std::vector<std::string>& actions) {
    world.factories[scene] = [this, actions](platform::Environment& environment) {
      return std::make_shared<PlainScreen>(environment, actions, touched);
    };
  }
  void show(const std::string& scene) {
    const auto storyboard = world.bundle.storyboard(world.environment, "VideoCapture");
    world.topmost().present(storyboard->instantiateViewController(scene), true);
    world.advance(0.4);
  }
  void showAlert() {
    auto alert = std::make_shared<platform::UIAlertController>(world.environment, "Error", "no");
    alert->addAction({"Settings", {}, [this] { touched.push_back("alert"); }});
    world.topmost().present(alert, true);
    world.advance(0.4);
  }
  devices::HeadlessPerson& person(const PersonHabits& habits) {
    person_ = std::make_unique<devices::HeadlessPerson>(world.loop, habits);
    hub.add(*person_);
    return *person_;
  }

  devices::FlowReporter& report() {
    reporter_ = std::make_unique<devices::FlowReporter>(
        world.loop, [this](const auto& event) { lines.push_back(describe(event)); });
    hub.add(*reporter_);
    return *reporter_;
  }

  std::vector<std::string> touched;
  std::vector<std::string> lines;
  devices::ScreenHub hub;
  std::unique_ptr<devices::HeadlessPerson> person_;
  std::unique_ptr<devices::FlowReporter> reporter_;
  tests::TestWorld world;
};

TEST_F(Person, RetriesAsOftenAsToldThenCancels) {
  auto& someone = person({.onRetry = PersonHabits::OnRetry::retry, .maxRetries = 2});
  for (int i = 0; i < 3; ++i) {
    show("VideoRetryViewController");
    EXPECT_EQ(touched.size(), static_cast<std::size_t>(i)) << "a person takes their time";
    world.advance(2);
  }
  EXPECT_EQ(touched, (std::vector<std::string>{"retry", "retry", "cancel"}));
  EXPECT_EQ(someone.retries(), 2);
}

TEST_F(Person, CancelsAtOnceWhenToldSoAndAnswersAlerts) {
  person({.onRetry = PersonHabits::OnRetry::cancel});
  show("VideoRetryViewController");
  world.advance(2);
  showAlert();
  world.advance(2);
  EXPECT_EQ(touched, (std::vector<std::string>{"cancel", "alert"}));
  EXPECT_EQ(&world.topmost(), world.root.get());
}

TEST_F(Person, TouchesDoneOnlyWhenItIsInSightLongEnough) {
  person({.doneAfter = seconds(5)});
  show("VideoCaptureViewController");
  world.advance(10);
  EXPECT_TRUE(touched.empty()) << "the overlay is transparent";
  world.view("readingTextOverlayView").setAlpha(1);
  world.advance(4);
  world.view("readingTextOverlayView").setAlpha(0);
  world.advance(10);
  EXPECT_TRUE(touched.empty()) << "it went away before";
  world.view("readingTextOverlayView").setAlpha(1);
  world.advance(4.9);
  EXPECT_TRUE(touched.empty());
  world.advance(0.1);
  EXPECT_EQ(touched, std::vector<std::string>{"doneReadingText"});
}

TEST_F(Person, TouchesDoneAgainWhenAnAlertLayOverIt) {
  person({.doneAfter = seconds(1), .reactionTime = seconds(3)});
  show("VideoCaptureViewController");
  world.view("readingTextOverlayView").setAlpha(1);
  showAlert();
  world.advance(10);
  EXPECT_EQ(touched, (std::vector<std::string>{"alert", "doneReadingText"}));
}

TEST_F(Person, WithoutHabitNeverTouchesDone) {
  person({});
  show("VideoCaptureViewController");
  world.view("readingTextOverlayView").setAlpha(1);
  world.advance(1000);
  EXPECT_TRUE(touched.empty());
}

TEST_F(Person, TheReporterTellsOnlyChangesOfWhatIsInSight) {
  devices::FlowReporter& reporter = report();
  const auto expect = [&](const std::vector<std::string>& expected) {
    world.advance(0);
    EXPECT_EQ(lines, expected);
    lines.clear();
  };
  show("VideoCaptureViewController");
  expect({"screen capture", "outline [other]"});

  world.label("captureLabel").setText("Take a Selfie");
  world.label("selfieOverlayLabel").setText("hidden still");
  world.label("idOverlayLabel").setText("unseen");
  expect({"caption Take a Selfie"});

  world.view("selfieOverlayLabelView").setBackgroundColor(platform::colors::kRed);
  world.view("selfieOverlayLabelView").setHidden(false);
  world.label("selfieOverlayLabel").setText("Move\ncloser");
  world.view("selfieOverlayImageView").setTintColor(platform::colors::kRed);
  expect({"prompt [error] Move / closer", "outline [error]"});
  world.label("selfieOverlayLabel").setText("Move\ncloser");
  expect({});

  world.view("selfieOverlayView").setAlpha(0);
  world.view("idOverlayView").setAlpha(1);
  world.view("idFrameImageView").setTintColor(platform::colors::kWhite);
  world.imageView("idImageView").setImage(world.bundle.image("overlay_landscape_id_back"));
  world.progressView("progressView").setHidden(false);
  world.progressView("progressView").setProgress(2.0F / 3, true);
  expect({"prompt none", "outline [neutral]", "silhouette back", "progress 0.67"});

  world.view("idOverlayView").setAlpha(0);
  world.view("readingTextOverlayView").setAlpha(1);
  world.label("readingTextCountdownLabel").setText("0:20");
  expect({"outline none", "silhouette none", "progress none", "countdown 0:20"});

  showAlert();
  reporter.soundPlayed(4095);
  expect({"alert Error: no (Settings)", "sound 4095"});
  world.alert()->choose(0);
  world.advance(1);
  expect({"alert none"});
}

TEST_F(Person, TheReporterIsSilentAboutACoveredScreen) {
  report();
  person({.onRetry = PersonHabits::OnRetry::cancel});
  show("VideoCaptureViewController");
  world.advance(0);
  lines.clear();
  auto& capture = world.topmost();
  const auto captureView = capture.view().shared_from_this();
  const auto storyboard = world.bundle.storyboard(world.environment, "VideoCapture");
  const auto retry = storyboard->instantiateViewController("VideoRetryViewController");
  dynamic_cast<platform::UILabel&>(*devices::findView(retry->view(), "label")).setText("Again?");
  capture.present(retry, true);
  world.label("captureLabel").setText("one");
  world.label("captureLabel").setText("two");
  world.advance(1);
  EXPECT_EQ(lines, std::vector<std::string>{"retry Again? (, )"});
  lines.clear();
  world.advance(2);
  EXPECT_EQ(lines, (std::vector<std::string>{"retry none", "caption two"}));
  lines.clear();
  capture.dismiss(true);
  world.advance(1);
  EXPECT_EQ(lines, std::vector<std::string>{"screen closed"});
}

}  // namespace
