#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "devices/headless/HeadlessPerson.h"
#include "devices/screen/FlowReporter.h"
#include "devices/screen/ViewSearch.h"
#include "support/TestWorld.h"

namespace corvana::tests {
namespace {

using devices::PersonHabits;
using Lines = std::vector<std::string>;

/// A screen of the storyboard that notes which of its controls were touched.
class PlainScreen final : public platform::UIViewController {
 public:
  PlainScreen(platform::Environment& environment, Lines actions, Lines& touched)
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
  Lines actions_;
  Lines& touched_;
};

class Person : public testing::Test {
 protected:
  Person() {
    world.environment.presentations = &hub;
    for (const auto& [scene, actions] :
         {std::pair<const char*, Lines>(kCapture, {"close", "doneReadingText"}),
          {kRetry, {"retry", "cancel"}}}) {
      world.factories[scene] = [this, actions = actions](platform::Environment& environment) {
        return std::make_shared<PlainScreen>(environment, actions, touched);
      };
    }
  }
  void show(const char* scene) {
    const auto storyboard = world.bundle.storyboard(world.environment, "VideoCapture");
    const auto screen = storyboard->instantiateViewController(scene);
    auto* label = devices::findView<platform::UILabel>(screen->view(), "label");
    if (label) label->setText("Again?");
    world.topmost().present(screen, true);
    world.advance(0.4);
  }
  void showAlert() {
    auto alert = std::make_shared<platform::UIAlertController>(world.environment, "Error", "no");
    alert->addAction({"Settings", {}, [this] { touched.push_back("alert"); }});
    world.topmost().present(alert, true);
    world.advance(0.4);
  }
  void enter(const PersonHabits& habits) {
    person = std::make_unique<devices::HeadlessPerson>(world.loop, habits);
    hub.add(*person);
  }
  void setReadingAlpha(double alpha) { world.view("readingTextOverlayView").setAlpha(alpha); }

  static constexpr auto kCapture = "VideoCaptureViewController";
  static constexpr auto kRetry = "VideoRetryViewController";
  Lines touched;
  devices::ScreenHub hub;
  std::unique_ptr<devices::HeadlessPerson> person;
  tests::TestWorld world;
};

TEST_F(Person, RetriesAsOftenAsToldThenCancelsAndAnswersAlerts) {
  enter({.onRetry = PersonHabits::OnRetry::retry, .maxRetries = 2});
  for (std::size_t i = 0; i < 3; ++i) {
    show(kRetry);
    EXPECT_EQ(touched.size(), i) << "a person takes their time";
    world.advance(2);
  }
  showAlert();
  world.advance(2);
  EXPECT_EQ(touched, (Lines{"retry", "retry", "cancel", "alert"}));
  EXPECT_EQ(person->retries(), 2);
  EXPECT_EQ(&world.topmost(), world.root.get());
}

TEST_F(Person, TouchesDoneAtAMomentOfTheFlowOrLaterAsSoonAsItIsInSight) {
  enter({.doneAfter = platform::seconds(1), .doneAt = platform::seconds(10)});
  show(kCapture);
  world.advance(3);
  setReadingAlpha(1);
  world.advance(6.9);
  EXPECT_EQ(touched, Lines{});
  world.advance(0.2);
  EXPECT_EQ(touched, Lines{"doneReadingText"});
  setReadingAlpha(0);
  world.advance(2);
  setReadingAlpha(1);
  world.advance(0.1);
  EXPECT_EQ(touched, (Lines{"doneReadingText", "doneReadingText"}));
}

TEST_F(Person, TouchesDoneOnlyWhenItIsInSightLongEnough) {
  enter({.doneAfter = platform::seconds(5), .reactionTime = platform::seconds(7)});
  show(kCapture);
  world.advance(10);  // the overlay is transparent
  setReadingAlpha(1);
  world.advance(4);
  setReadingAlpha(0);
  world.advance(10);
  EXPECT_EQ(touched, Lines{}) << "it went away before";
  setReadingAlpha(1);
  world.advance(4.9);
  EXPECT_EQ(touched, Lines{});
  world.advance(0.1);
  EXPECT_EQ(touched, Lines{"doneReadingText"});
  setReadingAlpha(0);
  setReadingAlpha(1);
  showAlert();
  world.advance(20);
  EXPECT_EQ(touched, (Lines{"doneReadingText", "alert", "doneReadingText"}))
      << "an alert lay over it when it should have been touched";
}

TEST_F(Person, TheReporterTellsOnlyChangesOfWhatIsInSight) {
  Lines lines;
  devices::FlowReporter reporter(world.loop,
                                 [&](const auto& event) { lines.push_back(describe(event)); });
  hub.add(reporter);
  const auto expect = [&](const Lines& expected) {
    world.advance(0);
    EXPECT_EQ(std::exchange(lines, {}), expected);
  };
  show(kCapture);
  expect({"screen capture", "outline [other]"});
  auto& capture = world.topmost();

  world.label("captureLabel").setText("Take a Selfie");
  world.label("selfieOverlayLabel").setText("hidden still");
  world.label("idOverlayLabel").setText("unseen");
  expect({"caption Take a Selfie"});

  // A theme may give all types one colour.
  reporter.prompted(corvana::PromptPlace::face, corvana::PromptType::info);
  reporter.prompted(corvana::PromptPlace::card, corvana::PromptType::success);
  world.view("selfieOverlayLabelView").setBackgroundColor(platform::colors::kRed);
  world.view("selfieOverlayLabelView").setHidden(false);
  world.label("selfieOverlayLabel").setText("Move\ncloser");
  world.view("selfieOverlayImageView").setTintColor(platform::colors::kRed);
  expect({"prompt [info] Move / closer", "outline [error]"});
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
  setReadingAlpha(1);
  world.label("readingTextCountdownLabel").setText("0:20");
  expect({"outline none", "silhouette none", "progress none", "countdown 0:20"});

  showAlert();
  reporter.soundPlayed(4095);
  expect({"alert Error: no (Settings)", "sound 4095"});
  world.alert()->choose(0);
  world.advance(1);
  expect({"alert none"});

  auto& caption = world.label("captureLabel");
  show(kRetry);
  caption.setText("unseen below");
  caption.setText("seen when the other has gone");
  expect({"retry Again? (, )"});
  world.topmost().dismiss(true);
  world.advance(1);
  expect({"retry none", "caption seen when the other has gone"});
  capture.dismiss(true);
  world.advance(1);
  expect({"screen closed"});
}

}  // namespace
}  // namespace corvana::tests
