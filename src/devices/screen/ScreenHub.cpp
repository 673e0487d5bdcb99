#include "devices/screen/ScreenHub.h"

#include "platform/uikit/UIViewController.h"

namespace corvana::devices {

void ScreenHub::willPresent(platform::UIViewController& controller) {
  shownBy(controller).view().setObserver(this);
  for (ScreenListener* listener : listeners_)
    listener->willPresent(controller);
}

void ScreenHub::didPresent(platform::UIViewController& controller) {
  for (ScreenListener* listener : listeners_)
    listener->didPresent(controller);
}

void ScreenHub::willDismiss(platform::UIViewController& controller) {
  for (ScreenListener* listener : listeners_)
    listener->willDismiss(controller);
}

void ScreenHub::didDismiss(platform::UIViewController& controller) {
  shownBy(controller).view().setObserver(nullptr);
  for (ScreenListener* listener : listeners_)
    listener->didDismiss(controller);
}

void ScreenHub::viewChanged(platform::UIView& view, const char* property) {
  for (ScreenListener* listener : listeners_)
    listener->viewChanged(view, property);
}

platform::UIViewController& shownBy(platform::UIViewController& controller) {
  auto* navigation = dynamic_cast<platform::UINavigationController*>(&controller);
  return navigation ? *navigation->rootViewController() : controller;
}

}  // namespace corvana::devices
