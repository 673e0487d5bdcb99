#pragma once

#include <vector>

#include "platform/uikit/PresentationObserver.h"
#include "platform/uikit/UIView.h"

namespace corvana::devices {

/// Someone who looks at the screen: a person who answers it, a reporter who writes down what it
/// shows. Main queue.
class ScreenListener {
 public:
  virtual ~ScreenListener() = default;
  virtual void willPresent(platform::UIViewController&) {}
  virtual void didPresent(platform::UIViewController&) {}
  virtual void willDismiss(platform::UIViewController&) {}
  virtual void didDismiss(platform::UIViewController&) {}
  virtual void viewChanged(platform::UIView&, const char* /*property*/) {}
};

/// The one observer of a headless screen; hands everything on to its listeners, which it does not
/// own and which stay to its end.
class ScreenHub final : public platform::PresentationObserver, public platform::ViewObserver {
 public:
  void add(ScreenListener& listener) { listeners_.push_back(&listener); }

  void willPresent(platform::UIViewController& controller) override;
  void didPresent(platform::UIViewController& controller) override;
  void willDismiss(platform::UIViewController& controller) override;
  void didDismiss(platform::UIViewController& controller) override;
  void viewChanged(platform::UIView& view, const char* property) override;

 private:
  std::vector<ScreenListener*> listeners_;
};

/// The controller whose views are shown: inside a navigation controller its root.
platform::UIViewController& shownBy(platform::UIViewController& controller);

}  // namespace corvana::devices
