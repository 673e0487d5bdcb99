#include "platform/uikit/UIView.h"

#include <utility>

#include "platform/Environment.h"
#include "platform/uikit/UIViewController.h"

namespace corvana::platform {
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
  const UIViewController* controller = root().controller_;
  if (!controller || !controller->isTopmost()) return false;
  const TimePoint now = controller->environment().runLoop.now();
  for (UIView* view = this; view; view = view->superview_) {
    if (view->hidden_ || view->alpha_ < kLowestTouchableAlpha || view->animatedUntil_ > now ||
        !view->isEnabledForTouch()) {
      return false;
    }
  }
  return true;
}

void UIView::changed(const char* property) {
  const UIView& root = this->root();
  if (root.controller_) {
    if (const auto end = root.controller_->environment().animations.end()) animatedUntil_ = *end;
  }
  if (root.observer_) root.observer_->viewChanged(*this, property);
}

void UIView::animate(Environment& environment, Duration duration,
                     const std::function<void()>& animations, Block completion) {
  if (auto* player = environment.animations.player()) player->willAnimate(duration);
  environment.animations.begin(environment.runLoop.now() + duration);
  animations();
  environment.animations.commit();
  if (completion) environment.runLoop.mainQueue().asyncAfter(duration, std::move(completion));
}

void UIView::transition(Environment& environment, UIView& view, Duration duration, Transition,
                        const std::function<void()>& animations, Block completion) {
  if (auto* player = environment.animations.player()) player->willFlip(view, duration);
  animations();
  if (completion) environment.runLoop.mainQueue().asyncAfter(duration, std::move(completion));
}

}  // namespace corvana::platform
