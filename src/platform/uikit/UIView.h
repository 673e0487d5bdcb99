#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/foundation/RunLoop.h"
#include "platform/geometry/Geometry.h"
#include "platform/uikit/CALayer.h"
#include "platform/uikit/UIColor.h"

namespace corvana::platform {

class UIView;
class UIViewController;
struct Environment;

/// A screen: told of each change of a view below the root that it observes. Main queue only. Layers
/// tell an observer of their own; constraints give no notice: read them when the view has loaded.
class ViewObserver {
 public:
  virtual ~ViewObserver() = default;
  virtual void viewChanged(UIView& view, const char* property) = 0;
};

/// Observable state of a rectangle of the screen; drawing is the screen's business. Main queue
/// only. Setters tell the observer of the root view, also when the value stays the same.
class UIView : public std::enable_shared_from_this<UIView> {
 public:
  UIView();
  virtual ~UIView();

  const std::string& name() const { return name_; }
  void setName(std::string name) { name_ = std::move(name); }

  bool isHidden() const { return hidden_; }
  void setHidden(bool hidden);
  double alpha() const { return alpha_; }
  void setAlpha(double alpha);
  const CGRect& frame() const { return frame_; }
  void setFrame(const CGRect& frame);
  const UIColor& backgroundColor() const { return backgroundColor_; }
  void setBackgroundColor(const UIColor& color);
  const UIColor& tintColor() const { return tintColor_; }
  void setTintColor(const UIColor& color);
  /// Asks the screen for a layout pass.
  void setNeedsLayout();

  CALayer& layer() { return *layer_; }
  const std::shared_ptr<CALayer>& layerRef() { return layer_; }

  const std::vector<std::shared_ptr<UIView>>& subviews() const { return subviews_; }
  UIView* superview() const { return superview_; }
  void addSubview(const std::shared_ptr<UIView>& view);
  UIView& root();

  /// Set on a root view only, and taken back (null) before the observer goes.
  void setObserver(ViewObserver* observer) { observer_ = observer; }
  /// The controller whose root view this is.
  UIViewController* controller() const { return controller_; }
  void setController(UIViewController* controller) { controller_ = controller; }

  /// A touch, a key or an accessibility action reaches a view only if it and all its ancestors are
  /// shown, enabled, at alpha 0.01 or more and not being animated, in the screen that is topmost.
  bool answersTouch();

  /// Sets the final values at once, tells the screen the duration, and always runs the completion
  /// (may be null) once that has passed.
  static void animate(Environment& environment, Duration duration,
                      const std::function<void()>& animations, Block completion = nullptr);
  enum class Transition { flipFromLeft };
  static void transition(Environment& environment, UIView& view, Duration duration,
                         Transition transition, const std::function<void()>& animations,
                         Block completion = nullptr);

 protected:
  void changed(const char* property);
  virtual bool isEnabledForTouch() const { return true; }

 private:
  std::string name_;
  bool hidden_ = false;
  double alpha_ = 1;
  CGRect frame_;
  UIColor backgroundColor_ = colors::kClear;
  UIColor tintColor_{0, 0.478, 1, 1};
  std::shared_ptr<CALayer> layer_;
  std::vector<std::shared_ptr<UIView>> subviews_;
  UIView* superview_ = nullptr;
  UIViewController* controller_ = nullptr;
  ViewObserver* observer_ = nullptr;
  TimePoint animatedUntil_{};
};

/// A row or column of views.
class UIStackView : public UIView {};

struct NSLayoutConstraint {
  float priority = 1000;
  bool isActive = true;
};

}  // namespace corvana::platform
