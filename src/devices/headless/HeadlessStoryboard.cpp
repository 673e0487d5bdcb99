#include "devices/headless/HeadlessStoryboard.h"

#include <algorithm>
#include <set>
#include <utility>

#include "corvana/CaptureSessionViewController.h"

namespace corvana::devices {
namespace {

using platform::UIView;

std::shared_ptr<UIView> makeView(SceneView::Kind kind) {
  switch (kind) {
    case SceneView::Kind::label:
      return std::make_shared<platform::UILabel>();
    case SceneView::Kind::imageView:
      return std::make_shared<platform::UIImageView>();
    case SceneView::Kind::button:
      return std::make_shared<platform::UIButton>();
    case SceneView::Kind::progressView:
      return std::make_shared<platform::UIProgressView>();
    case SceneView::Kind::stackView:
      return std::make_shared<platform::UIStackView>();
    case SceneView::Kind::view:
      break;
  }
  return std::make_shared<UIView>();
}

/// One building of a scene, and the hand that connects it to its controller.
class SceneBuilder final : public platform::OutletBinder {
 public:
  explicit SceneBuilder(const SceneLayout& scene) : scene_(scene) { build(); }

  const std::shared_ptr<UIView>& root() const { return root_; }
  const auto& constraints() const { return constraints_; }

  void constraint(const std::string& name,
                  platform::Outlet<platform::NSLayoutConstraint>& outlet) override {
    platform::require(std::ranges::count(scene_.constraints, name) > 0,
                      lacks("constraint outlet", name));
    auto& constraint = constraints_[name];
    if (!constraint) constraint = std::make_shared<platform::NSLayoutConstraint>();
    outlet.connect(name, constraint);
  }
  void collection(const std::string& name, platform::OutletCollection<UIView>& outlets) override {
    fill(name, outlets);
  }
  void collection(const std::string& name,
                  platform::OutletCollection<platform::UIButton>& outlets) override {
    fill(name, outlets);
  }
  void action(const std::string& name, std::function<void()> handler) override {
    bool connected = false;
    for (const SceneView& view : scene_.views) {
      if (view.action != name) continue;
      as<platform::UIButton>(view.name)->setAction(handler);
      connected = true;
    }
    platform::require(connected, lacks("control for the action", name));
    offered_.insert(name);
  }

  void requireAllActions() const {
    for (const SceneView& view : scene_.views) {
      platform::require(view.action.empty() || offered_.contains(view.action),
                        "the controller of the scene \"" + scene_.identifier +
                            "\" does not offer the action \"" + view.action + "\" of \"" +
                            view.name + "\"");
    }
  }

 protected:
  void connect(const std::string& name, ViewKind kind,
               const std::function<void(std::shared_ptr<UIView>)>& assign) override {
    const auto entry = views_.find(name);
    platform::require(entry != views_.end(), lacks("outlet", name));
    platform::require(isKind(*entry->second, kind), lacks("outlet of the right kind", name));
    assign(entry->second);
  }

 private:
  static bool isKind(const UIView& view, ViewKind kind) {
    switch (kind) {
      case ViewKind::label:
        return dynamic_cast<const platform::UILabel*>(&view);
      case ViewKind::imageView:
        return dynamic_cast<const platform::UIImageView*>(&view);
      case ViewKind::button:
        return dynamic_cast<const platform::UIButton*>(&view);
      case ViewKind::progressView:
        return dynamic_cast<const platform::UIProgressView*>(&view);
      case ViewKind::stackView:
        return dynamic_cast<const platform::UIStackView*>(&view);
      case ViewKind::view:
        break;
    }
    return true;
  }

  void build() {
    root_->setName(scene_.identifier);
    root_->setFrame(kHeadlessScreen);
    for (const SceneView& row : scene_.views) {
      const auto view = makeView(row.kind);
      view->setName(row.name);
      view->setFrame(row.frame);
      view->setAlpha(row.alpha);
      view->setHidden(row.hidden);
      (row.parent.empty() ? root_ : views_.at(row.parent))->addSubview(view);
      views_[row.name] = view;
    }
  }

  template <class View>
  std::shared_ptr<View> as(const std::string& name) const {
    const auto entry = views_.find(name);
    auto view = entry == views_.end() ? nullptr : std::dynamic_pointer_cast<View>(entry->second);
    platform::require(view != nullptr, lacks("view of the right kind", name));
    return view;
  }

  template <class View>
  void fill(const std::string& name, platform::OutletCollection<View>& outlets) const {
    const auto entry = scene_.collections.find(name);
    platform::require(entry != scene_.collections.end(), lacks("outlet collection", name));
    outlets.clear();
    for (const std::string& member : entry->second)
      outlets.push_back(as<View>(member));
  }

  std::string lacks(const char* what, const std::string& name) const {
    return "the scene \"" + scene_.identifier + "\" has no " + what + " \"" + name + "\"";
  }

  const SceneLayout& scene_;
  std::shared_ptr<UIView> root_ = std::make_shared<UIView>();
  std::map<std::string, std::shared_ptr<UIView>> views_;
  std::map<std::string, std::shared_ptr<platform::NSLayoutConstraint>> constraints_;
  std::set<std::string> offered_;
};

/// The picture of a camera screen lies over all views that are not raised above it.
void addPreview(platform::UIViewController& controller, UIView& root) {
  auto* camera = dynamic_cast<corvana::CaptureSessionViewController*>(&controller);
  if (!camera) return;
  const auto preview = std::make_shared<platform::CALayer>();
  root.layer().addSublayer(preview);
  camera->setVideoPreviewLayer(preview);
}

}  // namespace

HeadlessStoryboard::HeadlessStoryboard(platform::Environment& environment,
                                       std::vector<SceneLayout> scenes,
                                       platform::ControllerFactories factories)
    : environment_(environment), scenes_(std::move(scenes)), factories_(std::move(factories)) {}

std::shared_ptr<platform::UIViewController> HeadlessStoryboard::instantiateViewController(
    const std::string& identifier) {
  const auto scene = std::ranges::find(scenes_, identifier, &SceneLayout::identifier);
  const auto factory = factories_.find(identifier);
  if (scene == scenes_.end() || factory == factories_.end()) return nullptr;
  auto controller = factory->second(environment_);
  controller->setStoryboard(shared_from_this());
  // The controller owns this storyboard, and with it the scene.
  controller->setViewLoader([this, &layout = *scene](auto& owner) { return load(layout, owner); });
  return controller;
}

std::shared_ptr<UIView> HeadlessStoryboard::load(const SceneLayout& scene,
                                                 platform::UIViewController& controller) {
  SceneBuilder builder(scene);
  addPreview(controller, *builder.root());
  controller.declareOutlets(builder);
  builder.requireAllActions();
  for (const auto& [name, constraint] : builder.constraints())
    constraints_[name] = constraint;
  return builder.root();
}

std::shared_ptr<platform::NSLayoutConstraint> HeadlessStoryboard::constraint(
    const std::string& name) const {
  const auto entry = constraints_.find(name);
  return entry == constraints_.end() ? nullptr : entry->second.lock();
}

DirectoryBundle::StoryboardMaker headlessStoryboards(platform::ControllerFactories factories) {
  return [factories = std::move(factories)](platform::Environment& environment,
                                            const std::string& name) {
    return name == "VideoCapture"
               ? std::make_shared<HeadlessStoryboard>(environment, videoCaptureScenes(), factories)
               : nullptr;
  };
}

}  // namespace corvana::devices
