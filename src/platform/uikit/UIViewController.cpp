#include "platform/uikit/UIViewController.h"

#include <utility>

#include "platform/uikit/PresentationObserver.h"
#include "platform/uikit/UIStoryboard.h"

namespace corvana::platform {

UIViewController::~UIViewController() {
  if (presented_) presented_->presenting_ = nullptr;
  if (view_) view_->setController(nullptr);
}

void UIViewController::setStoryboard(std::shared_ptr<UIStoryboard> storyboard) {
  storyboard_ = std::move(storyboard);
}

void UIViewController::loadView() {
  const ViewLoader loader = std::exchange(viewLoader_, nullptr);
  view_ = loader ? loader(*this) : std::make_shared<UIView>();
  view_->setController(this);
}

UIView& UIViewController::view() {
  if (!view_) loadView();
  if (!std::exchange(viewLoaded_, true)) viewDidLoad();
  return *view_;
}

const UIViewController& UIViewController::outermost() const {
  return navigation_ ? static_cast<const UIViewController&>(*navigation_) : *this;
}

UIViewController& UIViewController::outermost() {
  return navigation_ ? static_cast<UIViewController&>(*navigation_) : *this;
}

bool UIViewController::isTopmost() const {
  const UIViewController& outer = outermost();
  return outer.appearance_ == Appearance::appeared && !outer.presented_;
}

void UIViewController::willAppear(bool animated) {
  appearance_ = Appearance::appearing;
  tell(&UIViewController::viewWillAppear, animated);
}

void UIViewController::didAppear(bool animated) {
  appearance_ = Appearance::appeared;
  tell(&UIViewController::viewDidAppear, animated);
}

void UIViewController::willDisappear(bool animated) {
  appearance_ = Appearance::disappearing;
  tell(&UIViewController::viewWillDisappear, animated);
}

void UIViewController::didDisappear(bool animated) {
  appearance_ = Appearance::disappeared;
  tell(&UIViewController::viewDidDisappear, animated);
}

void UIViewController::afterTransition(bool animated, Block block) {
  if (!animated) return block();
  if (auto* player = environment_.animations.player()) player->willAnimate(kPresentationDuration);
  environment_.runLoop.mainQueue().asyncAfter(kPresentationDuration, std::move(block));
}

void UIViewController::present(const std::shared_ptr<UIViewController>& controller, bool animated,
                               Block completion) {
  UIViewController& presenter = outermost();
  if (presenter.presented_ || presenter.dismissing_) {
    environment_.console.print(
        presenter.presented_
            ? "WARNING: a screen was not presented: another one is being shown"
            : "WARNING: a screen was not presented: the one below it is going away");
    return;
  }
  controller->dismissing_ = false;
  presenter.presented_ = controller;
  controller->presenting_ = &presenter;
  controller->view();
  if (environment_.presentations) environment_.presentations->willPresent(*controller);
  if (controller->hidesPresenter()) presenter.willDisappear(animated);
  controller->willAppear(animated);
  presenter.afterTransition(animated, [owner = presenter.shared_from_this(), controller, animated,
                                       completion = std::move(completion)] {
    owner->finishPresentation(*controller, animated, completion);
  });
}

void UIViewController::finishPresentation(UIViewController& presented, bool animated,
                                          const Block& completion) {
  // A dismissal that began during the transition has taken over the steps of appearance.
  if (presented.appearance_ == Appearance::appearing) {
    if (presented.hidesPresenter() && appearance_ == Appearance::disappearing) {
      didDisappear(animated);
    }
    presented.didAppear(animated);
    if (environment_.presentations) environment_.presentations->didPresent(presented);
  }
  if (completion) completion();
}

void UIViewController::dismiss(bool animated, Block completion) {
  UIViewController* target = &outermost();
  if (!target->presenting_) target = target->presented_.get();
  if (!target) {
    if (completion) environment_.runLoop.mainQueue().async(std::move(completion));
    return;
  }
  if (completion) target->dismissalCompletions_.push_back(std::move(completion));
  if (!std::exchange(target->dismissing_, true)) target->startDismissal(animated);
}

void UIViewController::startDismissal(bool animated) {
  const auto presenter = presenting_->shared_from_this();
  for (UIViewController* above = this; above; above = above->presented_.get()) {
    const bool visible =
        above->appearance_ == Appearance::appeared || above->appearance_ == Appearance::appearing;
    if (visible) above->willDisappear(animated);
  }
  if (presenter->appearance_ != Appearance::appeared) presenter->willAppear(animated);
  if (environment_.presentations) environment_.presentations->willDismiss(*this);
  afterTransition(animated, [self = shared_from_this(), presenter, animated] {
    self->finishDismissal(animated);
  });
}

void UIViewController::finishDismissal(bool animated) {
  // Null when a dismissal further down took this screen away in the meantime.
  if (UIViewController* presenter = presenting_) {
    const auto keepAlive = presenter->shared_from_this();
    detach();
    if (presenter->appearance_ == Appearance::appearing) presenter->didAppear(animated);
  }
  for (const Block& completion : std::exchange(dismissalCompletions_, {}))
    completion();
}

void UIViewController::detach() {
  if (const auto above = presented_) above->detach();
  if (appearance_ == Appearance::disappearing) didDisappear(false);
  if (environment_.presentations) environment_.presentations->didDismiss(*this);
  const auto keepAlive = shared_from_this();
  presenting_->presented_ = nullptr;
  presenting_ = nullptr;
}

UINavigationController::UINavigationController(Environment& environment,
                                               std::shared_ptr<UIViewController> root)
    : UIViewController(environment), root_(std::move(root)) {
  root_->navigation_ = this;
}

UINavigationController::~UINavigationController() {
  root_->navigation_ = nullptr;
}

void UINavigationController::viewDidLoad() {
  root_->view();
}

void UINavigationController::tell(Step step, bool animated) {
  (this->*step)(animated);
  (root_.get()->*step)(animated);
}

UIAlertController::UIAlertController(Environment& environment, std::string title,
                                     std::string message)
    : UIViewController(environment), title_(std::move(title)), message_(std::move(message)) {
  setModalPresentationStyle(UIModalPresentationStyle::alert);
}

bool UIAlertController::choose(std::size_t index) {
  if (index >= actions_.size() || !isTopmost()) return false;
  dismiss(true, actions_[index].handler);
  return true;
}

UIWindow::UIWindow(std::shared_ptr<UIViewController> root) : root_(std::move(root)) {
  Environment& environment = root_->environment();
  root_->view();
  if (environment.presentations) environment.presentations->willPresent(*root_);
  root_->willAppear(false);
  root_->didAppear(false);
  if (environment.presentations) environment.presentations->didPresent(*root_);
}

UIWindow::~UIWindow() {  // NOLINT(bugprone-exception-escape)
  if (root_->presented_) root_->presented_->detach();
}

UIViewController& UIWindow::topmost() {
  UIViewController* top = root_.get();
  while (top->presented_)
    top = top->presented_.get();
  if (auto* navigation = dynamic_cast<UINavigationController*>(top)) {
    return *navigation->rootViewController();
  }
  return *top;
}

}  // namespace corvana::platform
