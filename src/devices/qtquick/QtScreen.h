#pragma once

#include <QImage>
#include <QQmlEngine>
#include <QQuickWindow>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "devices/qtquick/Animator.h"
#include "devices/qtquick/PreviewItem.h"
#include "devices/qtquick/QtScene.h"
#include "devices/qtquick/ScreenSettings.h"
#include "devices/screen/DirectoryBundle.h"
#include "devices/screen/ScreenHub.h"
#include "platform/uikit/Animations.h"

namespace corvana::devices {

/// A window that shows a flow by the storyboards of a folder of QML modules, from the first screen
/// on that is presented. Add it to the `ScreenHub`, give it to the environment as its animations,
/// and its feed to the camera. Needs a `QGuiApplication` and outlives the run loop's work. Main
/// queue.
class QtScreen final : public ScreenListener, public platform::AnimationPlayer {
 public:
  struct Setup {
    /// Holds a folder for each storyboard.
    std::filesystem::path storyboards;
    /// Where drawings are looked up by name.
    std::filesystem::path images;
    /// The window's size in points; a full screen has its own.
    platform::CGSize size{540, 960};
    bool fullScreen = false;
    /// An application's own window, in which the screens lie over everything; it has to be shown,
    /// keep its size while a flow runs, and outlive the screen. Null: a window is made.
    QQuickWindow* window = nullptr;
  };

  QtScreen(platform::RunLoop& loop, const Setup& setup);
  ~QtScreen() override;

  /// The size of a phone held upright, or as much of it as the machine's screen has room for.
  static platform::CGSize comfortableSize();

  platform::CGSize size() const;
  const std::shared_ptr<PreviewFeed>& feed() const { return feed_; }
  ScreenSettings& settings() { return settings_; }
  QQuickWindow& window() { return *window_; }
  /// Called when the user wants to close the window that was made, which stays until this screen
  /// ends. May be null.
  std::function<void()> onClose;

  /// Called with what screen readers are asked to say at once. May be null.
  std::function<void(const std::string&)> onAnnounce;

  /// The storyboards of the folder with these controllers.
  DirectoryBundle::StoryboardMaker makeStoryboards(platform::ControllerFactories factories);
  /// Whether the folder of storyboards holds the scene as `NAME/IDENTIFIER.qml`.
  bool hasScene(const std::string& storyboard, const std::string& identifier) const;
  std::shared_ptr<QtRootView> loadScene(const std::string& storyboard,
                                        const std::string& identifier);

  /// A picture of what can be seen at the moment.
  QImage picture();
  /// Shows that a step was accepted to those who do not hear or feel it.
  void flash();
  /// Shows words of the host's own above everything, and has them announced; empty: none any more.
  void hint(const std::string& words);
  /// Shows lines of figures above everything, in place of those before; empty: none any more.
  void figures(const std::string& lines);

  void willPresent(platform::UIViewController& controller) override;
  void willDismiss(platform::UIViewController& controller) override;
  void didDismiss(platform::UIViewController& controller) override;
  void viewChanged(platform::UIView& view, const char* property) override;
  void willAnimate(platform::Duration duration) override;
  void willFlip(platform::UIView& view, platform::Duration duration) override;

 private:
  class Window;

  std::filesystem::path sceneFile(const std::string& storyboard,
                                  const std::string& identifier) const;
  void dressMade();
  void showMade();
  std::unique_ptr<QQuickItem> loadPart(const std::string& name, QVariantMap properties);
  std::unique_ptr<QQuickItem> loadWords(const std::string& name, const std::string& words);
  QtScene* sceneOf(platform::UIViewController& controller) const;
  QQuickItem* itemOf(platform::UIViewController& controller) const;
  void presentAlert(platform::UIAlertController& alert);
  void announce(QQuickItem& item);
  void raise(QQuickItem& item);
  void focus(QQuickItem& item);

  platform::RunLoop& loop_;
  Setup setup_;
  std::shared_ptr<PreviewFeed> feed_ = std::make_shared<PreviewFeed>();
  ScreenSettings settings_;
  Animator animator_;
  platform::Duration animationDuration_{};
  QQmlEngine engine_;
  ScreenImages* images_ = nullptr;  ///< the engine's
  std::unique_ptr<Window> made_;    ///< null in an application's own window
  QQuickWindow* window_;
  std::unique_ptr<QQuickItem> flash_;
  std::unique_ptr<QQuickItem> hint_;
  std::unique_ptr<QQuickItem> figures_;
  std::map<platform::UIViewController*, std::unique_ptr<QQuickItem>> alerts_;
  std::vector<QQuickItem*> stack_;  ///< lowest first; only the last takes touches and keys
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace corvana::devices
