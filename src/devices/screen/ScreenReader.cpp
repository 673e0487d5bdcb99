#include "devices/screen/ScreenReader.h"

#include <utility>

#include "platform/uikit/UIViewController.h"

namespace corvana::devices {
namespace {

constexpr const char* kCaptureScene = "VideoCaptureViewController";
constexpr const char* kRetryScene = "VideoRetryViewController";

bool isScene(platform::UIViewController& controller, const char* scene) {
  return shownBy(controller).view().name() == scene;
}

}  // namespace

ScreenReader::ScreenReader(platform::RunLoop& loop, platform::Duration settling)
    : loop_(loop), settling_(settling) {}

void ScreenReader::willPresent(platform::UIViewController& controller) {
  if (isScene(controller, kCaptureScene)) {
    screen_ = &shownBy(controller).view();
    covered_ = false;
    captureScreenCame();
    lookSoon();
  } else if (isScene(controller, kRetryScene)) {
    covered_ = true;
  }
}

void ScreenReader::didPresent(platform::UIViewController& controller) {
  if (const auto* alert = dynamic_cast<platform::UIAlertController*>(&controller)) {
    alertCame(*alert);
  } else if (isScene(controller, kRetryScene)) {
    retryScreenCame(controller.view());
  } else {
    lookSoon();
  }
}

void ScreenReader::didDismiss(platform::UIViewController& controller) {
  if (dynamic_cast<platform::UIAlertController*>(&controller)) {
    alertLeft();
  } else if (isScene(controller, kRetryScene)) {
    retryScreenLeft();
    covered_ = false;
    lookSoon();
  } else if (isScene(controller, kCaptureScene)) {
    screen_ = nullptr;
    captureScreenLeft();
  }
}

void ScreenReader::viewChanged(platform::UIView&, const char*) {
  lookSoon();
}

void ScreenReader::lookSoon() {
  if (std::exchange(lookPending_, true)) return;
  loop_.mainQueue().asyncAfter(settling_, [this, alive = std::weak_ptr(alive_)] {
    if (alive.expired()) return;
    lookPending_ = false;
    look();
  });
}

}  // namespace corvana::devices
