#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Environment.h"
#include "platform/uikit/UIView.h"

namespace corvana::platform {

class OutletBinder;
class UINavigationController;
class UIStoryboard;

enum class UIModalPresentationStyle { automatic, fullScreen, alert };
enum class UIStatusBarStyle { standard, lightContent };

/// One screenful and its place in the stack of presentations. Main queue only, from construction to
/// destruction; made by `std::make_shared`.
class UIViewController : public std::enable_shared_from_this<UIViewController> {
 public:
  explicit UIViewController(Environment& environment) : environment_(environment) {}
  virtual ~UIViewController();
  UIViewController(const UIViewController&) = delete;
  UIViewController& operator=(const UIViewController&) = delete;

  Environment& environment() const { return environment_; }

  /// Makes a controller's root view, with everything that the controller wants connected.
  using ViewLoader = std::function<std::shared_ptr<UIView>(UIViewController&)>;

  /// The root view. The first call loads it, by the storyboard's loader or else as an empty view,
  /// and then runs `viewDidLoad`.
  UIView& view();
  bool isViewLoaded() const { return viewLoaded_; }
  /// Set by the storyboard that made the controller; called at the first use of the view, so never
  /// for a controller that goes unseen.
  void setViewLoader(ViewLoader loader) { viewLoader_ = std::move(loader); }
  /// Names the outlets and actions of the controller; asked once, when the view is loaded.
  virtual void declareOutlets(OutletBinder&) {}

  const std::shared_ptr<UIStoryboard>& storyboard() const { return storyboard_; }
  void setStoryboard(std::shared_ptr<UIStoryboard> storyboard);

  virtual void viewDidLoad() {}
  virtual void viewWillAppear(bool /*animated*/) {}
  virtual void viewDidAppear(bool /*animated*/) {}
  virtual void viewWillDisappear(bool /*animated*/) {}
  virtual void viewDidDisappear(bool /*animated*/) {}
  virtual UIStatusBarStyle preferredStatusBarStyle() const { return UIStatusBarStyle::standard; }

  UIModalPresentationStyle modalPresentationStyle() const { return style_; }
  void setModalPresentationStyle(UIModalPresentationStyle style) { style_ = style; }

  /// Refused with a line on the console when this controller already presents another or has been
  /// dismissed. A full screen gives this controller will- and didDisappear; an alert does not.
  void present(const std::shared_ptr<UIViewController>& controller, bool animated,
               Block completion = nullptr);
  /// Takes away this controller (with the navigation controller around it) and all above it; of one
  /// that was not presented, what it presents. The presenter has appeared again when the completion
  /// runs; every completion runs once, also of calls made while the dismissal is under way.
  void dismiss(bool animated, Block completion = nullptr);

  UIViewController* presentedViewController() const { return presented_.get(); }
  UIViewController* presentingViewController() const { return presenting_; }
  UINavigationController* navigationController() const { return navigation_; }
  /// It is on the screen, and nothing lies above it.
  bool isTopmost() const;

  /// How long an animated presentation or dismissal takes.
  static constexpr Duration kPresentationDuration = std::chrono::milliseconds(400);

 private:
  friend class UINavigationController;
  friend class UIWindow;
  enum class Appearance { disappeared, appearing, appeared, disappearing };
  using Step = void (UIViewController::*)(bool);

  void loadView();
  const UIViewController& outermost() const;
  UIViewController& outermost();
  bool hidesPresenter() const { return style_ != UIModalPresentationStyle::alert; }
  /// Tells the controller, and the root inside a navigation controller, of an appearance step.
  virtual void tell(Step step, bool animated) { (this->*step)(animated); }
  void willAppear(bool animated);
  void didAppear(bool animated);
  void willDisappear(bool animated);
  void didDisappear(bool animated);
  void afterTransition(bool animated, Block block);
  void finishPresentation(UIViewController& presented, bool animated, const Block& completion);
  void startDismissal(bool animated);
  void finishDismissal(bool animated);
  void detach();

  Environment& environment_;
  ViewLoader viewLoader_;
  std::shared_ptr<UIView> view_;
  bool viewLoaded_ = false;
  std::shared_ptr<UIStoryboard> storyboard_;
  UIModalPresentationStyle style_ = UIModalPresentationStyle::automatic;
  std::shared_ptr<UIViewController> presented_;
  UIViewController* presenting_ = nullptr;
  UINavigationController* navigation_ = nullptr;
  Appearance appearance_ = Appearance::disappeared;
  bool dismissing_ = false;
  std::vector<Block> dismissalCompletions_;
};

/// Shows its root controller; appearance steps pass through to it.
class UINavigationController final : public UIViewController {
 public:
  UINavigationController(Environment& environment, std::shared_ptr<UIViewController> root);
  ~UINavigationController() override;
  const std::shared_ptr<UIViewController>& rootViewController() const { return root_; }
  bool isNavigationBarHidden() const { return barHidden_; }
  void setNavigationBarHidden(bool hidden) { barHidden_ = hidden; }
  void viewDidLoad() override;

 private:
  void tell(Step step, bool animated) override;

  std::shared_ptr<UIViewController> root_;
  bool barHidden_ = false;
};

struct UIAlertAction {
  enum class Style { standard, cancel };
  std::string title;
  Style style = Style::standard;
  std::function<void()> handler;  ///< may be empty
};

/// A title, a message and buttons over the screen.
class UIAlertController final : public UIViewController {
 public:
  UIAlertController(Environment& environment, std::string title, std::string message);
  const std::string& title() const { return title_; }
  const std::string& message() const { return message_; }
  const std::vector<UIAlertAction>& actions() const { return actions_; }
  void addAction(UIAlertAction action) { actions_.push_back(std::move(action)); }
  /// The user's answer: dismisses the alert, then runs the action's handler. False when there is no
  /// such action or the alert is not topmost.
  bool choose(std::size_t index);

 private:
  std::string title_;
  std::string message_;
  std::vector<UIAlertAction> actions_;
};

/// The root of the stack of presentations: the controller that is there from the start.
class UIWindow {
 public:
  explicit UIWindow(std::shared_ptr<UIViewController> root);
  ~UIWindow();  // NOLINT(bugprone-exception-escape): what a screen throws now ends the program
  UIViewController& rootViewController() { return *root_; }
  /// The controller on top of all, inside a navigation controller its root.
  UIViewController& topmost();

 private:
  std::shared_ptr<UIViewController> root_;
};

}  // namespace corvana::platform
