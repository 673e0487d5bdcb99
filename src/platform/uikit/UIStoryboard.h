#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/foundation/Require.h"
#include "platform/uikit/Controls.h"
#include "platform/uikit/UIViewController.h"

namespace corvana::platform {

/// A reference to a view that the storyboard connects. Using one that is not connected ends the
/// program, naming it. It owns the view, unless its `Pointer` is a `std::weak_ptr`: then only the
/// tree of views does.
template <class View, template <class> class Pointer = std::shared_ptr>
class Outlet {
 public:
  View* operator->() const { return &**this; }
  View& operator*() const {
    const std::shared_ptr<View> view = this->view();
    require(view != nullptr, "the outlet \"" + name_ + "\" is not connected");
    return *view;
  }
  /// Null when not connected.
  std::shared_ptr<View> view() const { return std::weak_ptr<View>(view_).lock(); }
  void connect(std::string name, const std::shared_ptr<View>& view) {
    name_ = std::move(name);
    view_ = view;
  }

 private:
  std::string name_ = "?";
  Pointer<View> view_;
};

template <class View>
using OutletCollection = std::vector<std::shared_ptr<View>>;

/// Takes down what a controller wants connected. A controller names each outlet and action once.
class OutletBinder {
 public:
  virtual ~OutletBinder() = default;

  template <class View, template <class> class Pointer>
  void outlet(const std::string& name, Outlet<View, Pointer>& outlet) {
    connect(name, kindOf(static_cast<View*>(nullptr)), [&](std::shared_ptr<UIView> view) {
      outlet.connect(name, std::dynamic_pointer_cast<View>(std::move(view)));
    });
  }
  virtual void constraint(const std::string& name, Outlet<NSLayoutConstraint>& outlet) = 0;
  virtual void collection(const std::string& name, OutletCollection<UIView>& outlets) = 0;
  virtual void collection(const std::string& name, OutletCollection<UIButton>& outlets) = 0;
  /// A method that a control of the scene may call.
  virtual void action(const std::string& name, std::function<void()> handler) = 0;

 protected:
  enum class ViewKind { view, label, imageView, button, progressView, stackView };
  virtual void connect(const std::string& name, ViewKind kind,
                       const std::function<void(std::shared_ptr<UIView>)>& assign) = 0;

 private:
  static ViewKind kindOf(UIView*) { return ViewKind::view; }
  static ViewKind kindOf(UILabel*) { return ViewKind::label; }
  static ViewKind kindOf(UIImageView*) { return ViewKind::imageView; }
  static ViewKind kindOf(UIButton*) { return ViewKind::button; }
  static ViewKind kindOf(UIProgressView*) { return ViewKind::progressView; }
  static ViewKind kindOf(UIStackView*) { return ViewKind::stackView; }
};

/// Makes the controllers of a storyboard by their identifiers; filled by the program or a test.
using ControllerFactories =
    std::map<std::string, std::function<std::shared_ptr<UIViewController>(Environment&)>>;

/// Scenes by identifier. Main queue only. Its controllers own it; it must not own them.
class UIStoryboard : public std::enable_shared_from_this<UIStoryboard> {
 public:
  virtual ~UIStoryboard() = default;
  /// A new controller with this storyboard as its own; null when no scene has this identifier. Its
  /// view is made, and its outlets and actions are connected, when the view is first used: a scene
  /// that lacks an outlet or an action of its controller ends the program then, naming it.
  virtual std::shared_ptr<UIViewController> instantiateViewController(
      const std::string& identifier) = 0;
};

}  // namespace corvana::platform
