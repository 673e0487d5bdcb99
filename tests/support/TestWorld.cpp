#include "support/TestWorld.h"

#include <vector>

#include "devices/screen/ScreenHub.h"
#include "devices/screen/ViewSearch.h"

namespace corvana::tests {
TestWorld::TestWorld()
    : bundle(CORVANA_TEST_RESOURCES,
             [this](platform::Environment& env,
                    const std::string& name) -> std::shared_ptr<platform::UIStoryboard> {
               if (makeStoryboard) return makeStoryboard(env, name);
               platform::require(name == "VideoCapture", "the tests have one storyboard");
               storyboard_ = std::make_shared<devices::HeadlessStoryboard>(env, scenes, factories);
               return storyboard_;
             }),
      environment{.runLoop = loop,
                  .bundle = bundle,
                  .notificationCenter = notificationCenter,
                  .console = console,
                  .application = application,
                  .mediaDevices = mediaDevices,
                  .speechAuthorization = speechAuthorization,
                  .systemSounds = sounds,
                  .randomness = randomness,
                  .mainScreen = {devices::kHeadlessScreen}},
      root(std::make_shared<platform::UIViewController>(environment)),
      window_(std::make_unique<platform::UIWindow>(root)) {}

TestWorld::~TestWorld() {
  window_.reset();
  root.reset();
  // What waits on the loop may own controllers, which need this world to the end.
  loop.shutDown();
}

void TestWorld::advance(double seconds) {
  loop.advance(platform::seconds(seconds));
}

void TestWorld::postWillEnterForeground() {
  notificationCenter.post({platform::kApplicationWillEnterForeground, nullptr});
}

devices::ScriptedRecorder& TestWorld::recorder() {
  platform::require(host.recorder() != nullptr, "the test's host has not been asked to record yet");
  return *host.recorder();
}

platform::UIView& TestWorld::findAny(const std::string& name) {
  std::vector<platform::UIViewController*> stack;
  for (auto* controller = root.get(); controller;
       controller = controller->presentedViewController())
    stack.insert(stack.begin(), controller);
  for (auto* controller : stack) {
    platform::UIView& shown = devices::shownBy(*controller).view();
    if (platform::UIView* found = devices::findView(shown, name)) return *found;
  }
  platform::fatal("no screen of the test has a view \"" + name + "\"");
}

platform::NSLayoutConstraint& TestWorld::constraint(const std::string& name) {
  const auto constraint = storyboard_ ? storyboard_->constraint(name) : nullptr;
  platform::require(constraint != nullptr, "no screen has a constraint \"" + name + "\"");
  return *constraint;
}

std::string TestWorld::text(const std::string& name) {
  return label(name).text().value_or("");
}

bool TestWorld::isVisible(const std::string& name) {
  return devices::isInSight(findAny(name));
}

}  // namespace corvana::tests
