#include "platform/uikit/UIView.h"

#include <utility>

#include "platform/Environment.h"
#include "platform/uikit/UIViewController.h"

namespace platform {
namespace {

constexpr double kLowestTouchableAlpha = 0.01;

}  // namespace

UIView::UIView() : layer_(std::make_shared<CALayer>()) {}

UIView::~UIView() {
  for (const auto& view : subviews_)
    view->superview_ = nullptr;
}

void UIView::setHidden(bool hidden) {
  hidden_ = hidden;
  changed("hidden");
}

void UIView::setAlpha(double alpha) {
  alpha_ = alpha;
  changed("alpha");
}

void UIView::setFrame(const CGRect& frame) {
  frame_ = frame;
  changed("frame");
}

void UIView::setBackgroundColor(const UIColor& color) {
  backgroundColor_ = color;
  changed("backgroundColor");
}

void UIView::setTintColor(const UIColor& color) {
  tintColor_ = color;
  changed("tintColor");
}

void UIView::setNeedsLayout() {
  changed("layout");
}

void UIView::addSubview(const std::shared_ptr<UIView>& view) {
  view->superview_ = this;
  layer_->addSublayer(view->layer_);
  subviews_.push_back(view);
}

UIView& UIView::root() {
  UIView* view = this;
  while (view->superview_)
    view = view->superview_;
  return *view;
}

bool UIView::answersTouch() {
  for (UIView* view = this; view; view = view->superview_) {
    if (view->hidden_ || view->alpha_ < kLowestTouchableAlpha || !view->isEnabledForTouch()) {
      return false;
    }
  }
  const UIViewController* controller = root().controller_;
  return controller && controller->isTopmost();
}

void UIView::changed(const char* property) {
  if (ViewObserver* observer = root().observer_) observer->viewChanged(*this, property);
}

void UIView::animate(Environment& environment, Duration duration,
                     const std::function<void()>& animations, Block completion) {
  if (environment.animations) environment.animations->willAnimate(duration);
  animations();
  if (completion) environment.runLoop.mainQueue().asyncAfter(duration, std::move(completion));
}

void UIView::transition(Environment& environment, UIView& view, Duration duration, Transition,
                        const std::function<void()>& animations, Block completion) {
  if (environment.animations) environment.animations->willFlip(view, duration);
  animations();
  if (completion) environment.runLoop.mainQueue().asyncAfter(duration, std::move(completion));
}

}  // namespace platform
