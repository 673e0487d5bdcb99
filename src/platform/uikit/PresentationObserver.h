#pragma once

namespace corvana::platform {

class UIViewController;

/// A screen, told when a controller comes onto the stack of presentations and when it has left.
/// Main queue. The controller may be an alert, or a navigation controller, whose root is shown.
class PresentationObserver {
 public:
  virtual ~PresentationObserver() = default;
  /// After `viewDidLoad`, before any step of appearance. Frames have to be true by the time of
  /// `viewDidAppear`, when the capture screen reads them.
  virtual void willPresent(UIViewController& controller) = 0;
  /// After `viewDidAppear`; left out when a dismissal began before.
  virtual void didPresent(UIViewController& controller) = 0;
  /// Before a dismissal's transition, of the lowest screen that goes; those above go with it.
  virtual void willDismiss(UIViewController& /*controller*/) {}
  /// After `viewDidDisappear`, from the top down, before the presenter's `viewDidAppear`.
  virtual void didDismiss(UIViewController& controller) = 0;
};

}  // namespace corvana::platform
