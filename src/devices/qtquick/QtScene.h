#pragma once

#include <QQmlEngine>
#include <QQuickItem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "devices/qtquick/Drawings.h"
#include "devices/qtquick/PreviewItem.h"
#include "devices/qtquick/ViewBinding.h"
#include "platform/uikit/UIStoryboard.h"

namespace corvana::devices {

class QtScene;

/// The item of a QML file with these properties. A missing file, or one with faults, ends the
/// program, naming the first.
std::unique_ptr<QQuickItem> loadItem(QQmlEngine& engine, const std::string& file,
                                     const QVariantMap& properties);

/// The root view of a scene; the scene goes with it.
class QtRootView final : public platform::UIView {
 public:
  explicit QtRootView(std::unique_ptr<QtScene> scene);
  ~QtRootView() override;
  QtScene& scene() const { return *scene_; }

 private:
  std::unique_ptr<QtScene> scene_;
};

/// A scene of the storyboard and the hand that connects it: outlets to the items of the same ids,
/// actions to the controls whose property `action` names them. What is missing or of the wrong kind
/// ends the program, naming it. Items lie in front of each other as the layers of their views do.
/// Main queue.
class QtScene final : public platform::OutletBinder, public platform::ViewObserver {
 public:
  /// Makes the scene of a file. A missing file, or one with faults, ends the program, naming the
  /// first.
  static std::shared_ptr<QtRootView> load(QQmlEngine& engine, const std::string& file,
                                          const std::string& identifier, const BindingTools& tools,
                                          const QSizeF& size);
  ~QtScene() override;

  QQuickItem& item() const { return *item_; }

  void constraint(const std::string& name,
                  platform::Outlet<platform::NSLayoutConstraint>& outlet) override;
  void collection(const std::string& name,
                  platform::OutletCollection<platform::UIView>& outlets) override;
  void collection(const std::string& name,
                  platform::OutletCollection<platform::UIButton>& outlets) override;
  void action(const std::string& name, std::function<void()> handler) override;
  /// Puts the views into their tree, after the controller has declared its outlets.
  void finish();
  /// Makes the layer of the item that the scene of a camera names as its `preview`, in front of
  /// all views that are not raised above it; the `outlines` lie over it. A missing item ends the
  /// program. Called after `finish`.
  std::shared_ptr<platform::CALayer> addPreviewLayer();
  /// The item that shows the camera's picture; null in a scene without one.
  PreviewItem* preview() const { return preview_; }

  /// Places what the controller's constraints decide, then tells all views their frames.
  void layOut();
  void viewChanged(platform::UIView& view, const char* property) override;
  void flip(platform::UIView& view, platform::Duration duration);

 protected:
  void connect(const std::string& name, ViewKind kind,
               const std::function<void(std::shared_ptr<platform::UIView>)>& assign) override;

 private:
  QtScene(std::unique_ptr<QQuickItem> item, std::string identifier, const BindingTools& tools)
      : item_(std::move(item)), identifier_(std::move(identifier)), tools_(tools) {}

  struct Outlet {
    std::shared_ptr<platform::UIView> view;  ///< null for the root, which owns the scene
    std::unique_ptr<ViewBinding> binding;
  };

  template <class Item>
  Item& part(const char* name) const;
  void bindRoot(QtRootView& root);
  void showLayers();
  QObject& object(const char* what, const std::string& name) const;
  QQuickItem& itemOf(const std::string& name) const;
  std::vector<QQuickItem*> members(const std::string& name) const;
  std::shared_ptr<platform::UIView> viewFor(QQuickItem& item, ViewKind kind,
                                            const std::string& name);
  Outlet makeOutlet(QQuickItem& item, ViewKind kind, const std::string& name) const;
  std::vector<QQuickItem*> controls() const;
  platform::UIView& parentOf(const QQuickItem& item) const;
  std::string nameOf(QQuickItem& item) const;
  std::string lacks(const std::string& what, const std::string& name) const;

  std::unique_ptr<QQuickItem> item_;
  std::string identifier_;
  BindingTools tools_;
  platform::UIView* root_ = nullptr;
  PreviewItem* preview_ = nullptr;
  OutlineItem* outlines_ = nullptr;
  std::shared_ptr<platform::CALayer> previewLayer_;
  std::map<const QQuickItem*, Outlet> outlets_;
  std::map<const platform::UIView*, ViewBinding*> bindings_;
  std::vector<std::pair<QObject*, std::shared_ptr<platform::NSLayoutConstraint>>> constraints_;
  std::vector<std::string> offered_;
};

}  // namespace corvana::devices
