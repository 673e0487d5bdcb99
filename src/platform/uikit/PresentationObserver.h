#pragma once

namespace platform {

class UIViewController;

/// A screen, told when a controller comes onto the stack of presentations and when it has left.
class PresentationObserver {
 public:
  virtual ~PresentationObserver() = default;
  /// Before the controller's view appears: the last moment to lay it out.
  virtual void willPresent(UIViewController& controller) = 0;
  virtual void didPresent(UIViewController& controller) = 0;
  virtual void didDismiss(UIViewController& controller) = 0;
};

}  // namespace platform
