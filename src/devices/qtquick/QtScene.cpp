#include "devices/qtquick/QtScene.h"

#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlListReference>
#include <QUrl>
#include <algorithm>
#include <filesystem>

namespace corvana::devices {

using platform::UIButton;
using platform::UIView;

namespace {

template <class View, class Binding>
std::pair<std::shared_ptr<UIView>, std::unique_ptr<ViewBinding>> makePair(
    QQuickItem& item, const BindingTools& tools) {
  auto view = std::make_shared<View>();
  auto binding = std::make_unique<Binding>(item, *view, tools);
  return {std::move(view), std::move(binding)};
}

std::string actionOf(const QQuickItem& item) {
  return item.property("action").toString().toStdString();
}

/// All items below, each before what lies on it.
std::vector<QQuickItem*> descendants(const QQuickItem& item) {
  std::vector<QQuickItem*> found;
  for (QQuickItem* child : item.childItems()) {
    found.push_back(child);
    const auto deeper = descendants(*child);
    found.insert(found.end(), deeper.begin(), deeper.end());
  }
  return found;
}

}  // namespace

QtRootView::QtRootView(std::unique_ptr<QtScene> scene) : scene_(std::move(scene)) {}

QtRootView::~QtRootView() = default;

std::unique_ptr<QQuickItem> loadItem(QQmlEngine& engine, const std::string& file,
                                     const QVariantMap& properties) {
  QQmlComponent component(&engine, QUrl::fromLocalFile(QString::fromStdString(file)));
  platform::require(component.isReady(), component.errorString().toStdString());
  auto* item = qobject_cast<QQuickItem*>(component.createWithInitialProperties(properties));
  platform::require(item != nullptr, "\"" + file + "\" is no item of a screen");
  return std::unique_ptr<QQuickItem>(item);
}

std::shared_ptr<QtRootView> QtScene::load(QQmlEngine& engine, const std::string& file,
                                          const std::string& identifier, const BindingTools& tools,
                                          const QSizeF& size) {
  auto item = loadItem(
      engine, file,
      {{QStringLiteral("width"), size.width()}, {QStringLiteral("height"), size.height()}});
  std::unique_ptr<QtScene> owned(new QtScene(std::move(item), identifier, tools));
  QtScene& scene = *owned;
  auto root = std::make_shared<QtRootView>(std::move(owned));
  scene.bindRoot(*root);
  return root;
}

QtScene::~QtScene() {
  if (root_) root_->layer().setObserver(nullptr);
}

void QtScene::bindRoot(QtRootView& root) {
  const std::string missing = lacksForView(*item_);
  platform::require(missing.empty(), "the scene \"" + identifier_ + "\" lacks " + missing);
  root_ = &root;
  root.setName(identifier_);
  Outlet& outlet = outlets_[item_.get()];
  outlet.binding = std::make_unique<ViewBinding>(*item_, root, tools_);
  outlet.binding->takeOver();
  bindings_[&root] = outlet.binding.get();
  root.setObserver(this);
  root.layer().setObserver([this] { showLayers(); });
}

std::string QtScene::lacks(const std::string& what, const std::string& name) const {
  return "the scene \"" + identifier_ + "\" has no " + what + " \"" + name + "\"";
}

QObject& QtScene::object(const char* what, const std::string& name) const {
  QObject* found = qmlContext(item_.get())->objectForName(QString::fromStdString(name));
  platform::require(found != nullptr, lacks(what, name));
  return *found;
}

QQuickItem& QtScene::itemOf(const std::string& name) const {
  auto* item = qobject_cast<QQuickItem*>(&object("outlet", name));
  platform::require(item != nullptr, lacks("outlet of the right kind", name));
  return *item;
}

std::string QtScene::nameOf(QQuickItem& item) const {
  return qmlContext(item_.get())->nameForObject(&item).toStdString();
}

QtScene::Outlet QtScene::makeOutlet(QQuickItem& item, ViewKind kind,
                                    const std::string& name) const {
  std::string missing;
  std::pair<std::shared_ptr<UIView>, std::unique_ptr<ViewBinding>> made;
  switch (kind) {
    case ViewKind::label:
      missing = lacksForLabel(item);
      made = makePair<platform::UILabel, LabelBinding>(item, tools_);
      break;
    case ViewKind::imageView:
      missing = lacksForImageView(item);
      made = makePair<platform::UIImageView, ImageViewBinding>(item, tools_);
      break;
    case ViewKind::button:
      missing = lacksForButton(item);
      // A signal that is not there can't be connected to.
      if (missing.empty()) made = makePair<UIButton, ButtonBinding>(item, tools_);
      break;
    case ViewKind::progressView:
      missing = lacksForProgressView(item);
      made = makePair<platform::UIProgressView, ProgressViewBinding>(item, tools_);
      break;
    case ViewKind::stackView:
      missing = lacksForView(item);
      made = makePair<platform::UIStackView, ViewBinding>(item, tools_);
      break;
    case ViewKind::view:
      missing = lacksForView(item);
      made = makePair<UIView, ViewBinding>(item, tools_);
      break;
  }
  platform::require(missing.empty(),
                    lacks("outlet of the right kind", name) + ": it lacks " + missing);
  return {std::move(made.first), std::move(made.second)};
}

std::shared_ptr<UIView> QtScene::viewFor(QQuickItem& item, ViewKind kind, const std::string& name) {
  const auto known = outlets_.find(&item);
  if (known != outlets_.end()) return known->second.view;
  Outlet outlet = makeOutlet(item, kind, name);
  outlet.view->setName(name);
  outlet.binding->takeOver();
  bindings_[outlet.view.get()] = outlet.binding.get();
  return outlets_.emplace(&item, std::move(outlet)).first->second.view;
}

void QtScene::connect(const std::string& name, ViewKind kind,
                      const std::function<void(std::shared_ptr<UIView>)>& assign) {
  assign(viewFor(itemOf(name), kind, name));
}

void QtScene::constraint(const std::string& name,
                         platform::Outlet<platform::NSLayoutConstraint>& outlet) {
  QObject& item = object("constraint outlet", name);
  const QVariant priority = item.property("priority");
  platform::require(priority.isValid(), lacks("constraint with a priority", name));
  auto constraint = std::make_shared<platform::NSLayoutConstraint>();
  constraint->priority = priority.toFloat();
  constraints_.emplace_back(&item, constraint);
  outlet.connect(name, constraint);
}

std::vector<QQuickItem*> QtScene::members(const std::string& name) const {
  const QQmlListReference list(&object("outlet collection", name), "members");
  platform::require(list.isReadable(), lacks("outlet collection with members", name));
  std::vector<QQuickItem*> items;
  for (qsizetype i = 0; i < list.count(); ++i)
    items.push_back(qobject_cast<QQuickItem*>(list.at(i)));
  return items;
}

void QtScene::collection(const std::string& name, platform::OutletCollection<UIView>& outlets) {
  outlets.clear();
  for (QQuickItem* item : members(name))
    outlets.push_back(viewFor(*item, ViewKind::view, nameOf(*item)));
}

void QtScene::collection(const std::string& name, platform::OutletCollection<UIButton>& outlets) {
  outlets.clear();
  for (QQuickItem* item : members(name)) {
    auto button =
        std::dynamic_pointer_cast<UIButton>(viewFor(*item, ViewKind::button, nameOf(*item)));
    platform::require(button != nullptr, lacks("collection of buttons only", name));
    outlets.push_back(std::move(button));
  }
}

std::vector<QQuickItem*> QtScene::controls() const {
  auto found = descendants(*item_);
  std::erase_if(found, [](const QQuickItem* item) { return actionOf(*item).empty(); });
  return found;
}

void QtScene::action(const std::string& name, std::function<void()> handler) {
  bool connected = false;
  for (QQuickItem* control : controls()) {
    if (actionOf(*control) != name) continue;
    const auto button =
        std::dynamic_pointer_cast<UIButton>(viewFor(*control, ViewKind::button, nameOf(*control)));
    platform::require(button != nullptr, lacks("button for the action", name));
    button->setAction(handler);
    connected = true;
  }
  platform::require(connected, lacks("control for the action", name));
  offered_.push_back(name);
}

UIView& QtScene::parentOf(const QQuickItem& item) const {
  for (const QQuickItem* parent = item.parentItem(); parent; parent = parent->parentItem()) {
    const auto outlet = outlets_.find(parent);
    if (outlet != outlets_.end()) return outlet->second.binding->view();
  }
  return *root_;
}

void QtScene::finish() {
  for (const QQuickItem* item : descendants(*item_)) {
    const auto outlet = outlets_.find(item);
    if (outlet != outlets_.end()) parentOf(*item).addSubview(outlet->second.view);
  }
  for (const QQuickItem* control : controls()) {
    const std::string action = actionOf(*control);
    platform::require(std::ranges::count(offered_, action) > 0,
                      "the controller of the scene \"" + identifier_ +
                          "\" does not offer the action \"" + action + "\"");
  }
}

template <class Item>
Item& QtScene::part(const char* name) const {
  auto* found = qobject_cast<Item*>(item_->property(name).value<QObject*>());
  platform::require(found != nullptr, lacks("item of the right kind", name));
  return *found;
}

std::shared_ptr<platform::CALayer> QtScene::addPreviewLayer() {
  preview_ = &part<PreviewItem>("preview");
  outlines_ = &part<OutlineItem>("outlines");
  // Of equal z positions the layer that was added last lies in front.
  preview_->stackAfter(item_->childItems().back());
  outlines_->stackAfter(preview_);
  previewLayer_ = std::make_shared<platform::CALayer>();
  root_->layer().addSublayer(previewLayer_);
  return previewLayer_;
}

void QtScene::showLayers() {
  for (const auto& [item, outlet] : outlets_) {
    if (outlet.view) outlet.binding->item().setZ(outlet.view->layer().zPosition());
  }
  if (!previewLayer_) return;
  preview_->setZ(previewLayer_->zPosition());
  outlines_->show(root_->layer());
}

void QtScene::layOut() {
  for (const auto& [item, constraint] : constraints_)
    item->setProperty("priority", constraint->isActive ? constraint->priority : 0.0F);
  for (const auto& [item, outlet] : outlets_)
    outlet.binding->reportFrame(*item_);
}

void QtScene::viewChanged(UIView& view, const char* property) {
  const std::string_view what = property;
  if (what == "frame") return;
  if (what == "layout") return layOut();
  const auto binding = bindings_.find(&view);
  if (binding != bindings_.end()) binding->second->apply(what);
}

void QtScene::flip(UIView& view, platform::Duration duration) {
  const auto binding = bindings_.find(&view);
  if (binding == bindings_.end()) return;
  if (auto* imageView = dynamic_cast<ImageViewBinding*>(binding->second)) imageView->flip(duration);
}

}  // namespace corvana::devices
