#pragma once

#include <memory>
#include <string>

#include "devices/headless/HeadlessStoryboard.h"
#include "devices/scripted/ScriptedHost.h"
#include "devices/scripted/ScriptedMedia.h"
#include "devices/scripted/ScriptedSystem.h"
#include "platform/Environment.h"
#include "platform/foundation/RandomSource.h"
#include "platform/foundation/VirtualRunLoop.h"
#include "platform/uikit/UIStoryboard.h"
#include "platform/uikit/UIViewController.h"
#include "support/HostTablesGuard.h"
#include "support/TestBundle.h"

namespace corvana::tests {

/// Everything the module needs, on a virtual clock, with a scripted host and a screen whose every
/// view a test can read and touch by its outlet's name.
///
/// Faults (a missing resource, a refused microphone) are set on the public members, before the
/// entry.
class TestWorld {
 public:
  TestWorld();
  ~TestWorld();
  TestWorld(const TestWorld&) = delete;
  TestWorld& operator=(const TestWorld&) = delete;

 private:
  HostTablesGuard tables_;

 public:
  platform::VirtualRunLoop loop;
  platform::NotificationCenter notificationCenter;
  devices::CapturingConsole console;
  devices::ScriptedApplication application;
  devices::ScriptedMediaDevices mediaDevices{loop};
  devices::ScriptedSpeechAuthorization speechAuthorization{loop};
  devices::RecordingSounds sounds;
  platform::SeededRandom randomness{0};
  devices::ScriptedHost host{loop, mediaDevices};
  platform::ControllerFactories factories;
  std::vector<devices::SceneLayout> scenes = devices::videoCaptureScenes();
  /// Another screen's storyboards in place of those made from `scenes`; null unless a test sets it.
  TestBundle::StoryboardMaker makeStoryboard;
  /// Its folder is that of the tests' small resources.
  TestBundle bundle;
  platform::Environment environment;
  /// The caller's controller, on the screen from the start.
  std::shared_ptr<platform::UIViewController> root;

  /// Runs everything of the next `seconds`; 0 runs what is due now.
  void advance(double seconds);
  void postWillEnterForeground();

  /// The last recorder made; none yet fails the test.
  devices::ScriptedRecorder& recorder();
  devices::ScriptedSpeechRecognizer& speech() { return *recorder().speechRecognizer(); }
  /// The storyboard opened last; null before.
  const std::shared_ptr<devices::HeadlessStoryboard>& storyboard() const { return storyboard_; }

  /// The controller on top of everything (inside a navigation controller its root).
  platform::UIViewController& topmost() { return window_->topmost(); }
  /// The alert on top; null when there is none.
  platform::UIAlertController* alert() {
    return dynamic_cast<platform::UIAlertController*>(&topmost());
  }
  /// "CLASS OF SCENE" of the scene on top, as "VideoRetryViewController"; empty for other screens.
  std::string topmostScene() { return topmost().view().name(); }

  /// A view by its outlet's name in the topmost screen that has one; a missing one fails the test.
  platform::UIView& view(const std::string& name) { return find<platform::UIView>(name); }
  platform::UILabel& label(const std::string& name) { return find<platform::UILabel>(name); }
  platform::UIImageView& imageView(const std::string& name) {
    return find<platform::UIImageView>(name);
  }
  platform::UIButton& button(const std::string& name) { return find<platform::UIButton>(name); }
  platform::UIProgressView& progressView(const std::string& name) {
    return find<platform::UIProgressView>(name);
  }
  platform::NSLayoutConstraint& constraint(const std::string& name);
  /// The label's text; "" when absent.
  std::string text(const std::string& label);
  /// It and all its ancestors are shown, at a visible alpha.
  bool isVisible(const std::string& name);
  /// Touches a button; false when it does not answer.
  bool tap(const std::string& name) { return button(name).touchUpInside(); }

 private:
  platform::UIView& findAny(const std::string& name);
  template <class View>
  View& find(const std::string& name) {
    auto* view = dynamic_cast<View*>(&findAny(name));
    platform::require(view != nullptr, "the test's view \"" + name + "\" is of another kind");
    return *view;
  }

  std::shared_ptr<devices::HeadlessStoryboard> storyboard_;
  std::unique_ptr<platform::UIWindow> window_;
};

}  // namespace corvana::tests
