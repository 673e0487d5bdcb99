#include "devices/qtquick/QtScreen.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QQmlContext>
#include <QScreen>
#include <cmath>
#include <utility>

#include "devices/qtquick/AlertTouches.h"
#include "devices/qtquick/QtStoryboard.h"
#include "platform/uikit/UIViewController.h"

namespace corvana::devices {

using platform::Duration;
using platform::UIViewController;

namespace {

constexpr const char* kEntrance = "entrance";
constexpr const char* kFirstFocus = "firstFocus";
constexpr const char* kStrength = "strength";
constexpr Duration kFlash = std::chrono::milliseconds(350);
constexpr qreal kAboveAll = 1000;

void registerTypes() {
  static const bool kRegistered = [] {
    qmlRegisterType<PreviewItem>("Corvana.Devices", 1, 0, "Preview");
    qmlRegisterType<OutlineItem>("Corvana.Devices", 1, 0, "Outlines");
    qmlRegisterType<ShadeItem>("Corvana.Devices", 1, 0, "Shade");
    qmlRegisterType<OvalItem>("Corvana.Devices", 1, 0, "Oval");
    return true;
  }();
  static_cast<void>(kRegistered);
}

}  // namespace

class QtScreen::Window final : public QQuickWindow {
 public:
  explicit Window(std::function<void()>& onClose) : onClose_(onClose) {}

 protected:
  bool event(QEvent* event) override {
    if (event->type() != QEvent::Close) return QQuickWindow::event(event);
    event->ignore();
    if (onClose_) onClose_();
    return true;
  }

 private:
  std::function<void()>& onClose_;
};

QtScreen::QtScreen(platform::RunLoop& loop, const Setup& setup)
    : loop_(loop),
      setup_(setup),
      animator_(loop),
      images_(new ScreenImages({setup.images, setup.storyboards / "VideoCapture"})),
      made_(setup.window ? nullptr : std::make_unique<Window>(onClose)),
      window_(setup.window ? setup.window : made_.get()) {
  registerTypes();
  engine_.addImageProvider(QString::fromLatin1(ScreenImages::kScheme), images_);
  engine_.addImportPath(QString::fromStdString(setup.storyboards.string()));
  engine_.rootContext()->setContextProperty(QStringLiteral("screen"), &settings_);
  if (made_) dressMade();
  flash_ = loadPart("Flash", {{QStringLiteral("z"), kAboveAll}});
  flash_->setParentItem(window_->contentItem());
}

QtScreen::~QtScreen() = default;

platform::CGSize QtScreen::comfortableSize() {
  const QSizeF phone(540, 960);
  const QSizeF room = QSizeF(QGuiApplication::primaryScreen()->availableSize()) * 0.95;
  const QSizeF fitting = phone.scaled(room, Qt::KeepAspectRatio).boundedTo(phone);
  return {std::floor(fitting.width()), std::floor(fitting.height())};
}

void QtScreen::dressMade() {
  window_->setColor(Qt::black);
  window_->setTitle(QStringLiteral("Corvana Video ID"));
  if (setup_.fullScreen) return window_->resize(QGuiApplication::primaryScreen()->size());
  // The recorder is told once where oval and frame are.
  const QSize size = QSizeF(setup_.size.width, setup_.size.height).toSize();
  window_->setMinimumSize(size);
  window_->setMaximumSize(size);
  window_->resize(size);
}

void QtScreen::showMade() {
  if (window_->isVisible()) return;
  setup_.fullScreen ? window_->showFullScreen() : window_->show();
}

platform::CGSize QtScreen::size() const {
  return {static_cast<double>(window_->width()), static_cast<double>(window_->height())};
}

DirectoryBundle::StoryboardMaker QtScreen::makeStoryboards(
    platform::ControllerFactories factories) {
  return [this, factories = std::move(factories)](
             platform::Environment& environment,
             const std::string& name) -> std::shared_ptr<platform::UIStoryboard> {
    if (!std::filesystem::is_directory(setup_.storyboards / name)) return nullptr;
    return std::make_shared<QtStoryboard>(environment, *this, name, factories);
  };
}

std::filesystem::path QtScreen::sceneFile(const std::string& storyboard,
                                          const std::string& identifier) const {
  return setup_.storyboards / storyboard / (identifier + ".qml");
}

bool QtScreen::hasScene(const std::string& storyboard, const std::string& identifier) const {
  std::error_code error;
  return std::filesystem::is_regular_file(sceneFile(storyboard, identifier), error);
}

std::shared_ptr<QtRootView> QtScreen::loadScene(const std::string& storyboard,
                                                const std::string& identifier) {
  return QtScene::load(
      engine_, sceneFile(storyboard, identifier).string(), identifier,
      {animator_, *images_, animationDuration_, [this](QQuickItem& item) { announce(item); }},
      QSizeF(size().width, size().height));
}

std::unique_ptr<QQuickItem> QtScreen::loadPart(const std::string& name, QVariantMap properties) {
  properties.insert(QStringLiteral("width"), size().width);
  properties.insert(QStringLiteral("height"), size().height);
  return loadItem(engine_, sceneFile("VideoCapture", name).string(), properties);
}

QtScene* QtScreen::sceneOf(UIViewController& controller) const {
  auto* root = dynamic_cast<QtRootView*>(&shownBy(controller).view());
  return root ? &root->scene() : nullptr;
}

QQuickItem* QtScreen::itemOf(UIViewController& controller) const {
  const auto alert = alerts_.find(&controller);
  if (alert != alerts_.end()) return alert->second.get();
  QtScene* scene = sceneOf(controller);
  return scene ? &scene->item() : nullptr;
}

QImage QtScreen::picture() {
  // Pictures of the camera and things to delete wait in the event queue.
  QCoreApplication::processEvents();
  return window_->grabWindow();
}

void QtScreen::flash() {
  flash_->setProperty(kStrength, 1.0);
  animator_.setAnimated(true);
  animator_.move(*flash_, kStrength, 0, kFlash);
  animator_.setAnimated(settings_.animated);
}

void QtScreen::hint(const std::string& words) {
  hint_ = words.empty() ? nullptr : loadWords("Hint", words);
  if (hint_) announce(*hint_);
}

void QtScreen::figures(const std::string& lines) {
  figures_ = lines.empty() ? nullptr : loadWords("Figures", lines);
}

std::unique_ptr<QQuickItem> QtScreen::loadWords(const std::string& name, const std::string& words) {
  auto part = loadPart(name, {{QStringLiteral("text"), QString::fromStdString(words)},
                              {QStringLiteral("z"), kAboveAll}});
  part->setParentItem(window_->contentItem());
  return part;
}

void QtScreen::announce(QQuickItem& item) {
  QAccessibleEvent event(&item, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
  const auto* accessible = QAccessible::queryAccessibleInterface(&item);
  if (onAnnounce && accessible) onAnnounce(accessible->text(QAccessible::Name).toStdString());
}

void QtScreen::raise(QQuickItem& item) {
  if (made_) showMade();
  if (!stack_.empty()) stack_.back()->setEnabled(false);
  stack_.push_back(&item);
  item.setParentItem(window_->contentItem());
  item.setZ(static_cast<double>(stack_.size()));
  animator_.setAnimated(settings_.animated);
  item.setProperty(kEntrance, 0.0);
  animator_.move(item, kEntrance, 1, UIViewController::kPresentationDuration);
  focus(item);
}

void QtScreen::focus(QQuickItem& item) {
  item.setEnabled(true);
  auto* first = item.property(kFirstFocus).value<QQuickItem*>();
  (first ? *first : item).forceActiveFocus();
}

void QtScreen::presentAlert(platform::UIAlertController& alert) {
  QStringList titles;
  for (const auto& action : alert.actions())
    titles << QString::fromStdString(action.title);
  auto item =
      loadPart("Alert", {{QStringLiteral("title"), QString::fromStdString(alert.title())},
                         {QStringLiteral("message"), QString::fromStdString(alert.message())},
                         {QStringLiteral("actions"), titles}});
  new AlertTouches(alert, *item);
  raise(*item);
  announce(*item);
  alerts_[&alert] = std::move(item);
}

void QtScreen::willPresent(UIViewController& controller) {
  if (auto* alert = dynamic_cast<platform::UIAlertController*>(&controller)) {
    return presentAlert(*alert);
  }
  QtScene* scene = sceneOf(controller);
  if (!scene) return;
  raise(scene->item());
  if (PreviewItem* preview = scene->preview()) preview->setFeed(feed_);
  scene->layOut();
}

void QtScreen::willDismiss(UIViewController& controller) {
  for (UIViewController* gone = &controller; gone; gone = gone->presentedViewController()) {
    if (QQuickItem* item = itemOf(*gone)) {
      animator_.move(*item, kEntrance, 0, UIViewController::kPresentationDuration);
    }
  }
}

void QtScreen::didDismiss(UIViewController& controller) {
  if (QQuickItem* item = itemOf(controller)) {
    item->setParentItem(nullptr);
    std::erase(stack_, item);
    if (!stack_.empty()) focus(*stack_.back());
  }
  // The touch that brought the dismissal about may still be under way in the alert's item.
  if (const auto alert = alerts_.extract(&controller)) alert.mapped().release()->deleteLater();
}

void QtScreen::viewChanged(platform::UIView& view, const char* property) {
  if (auto* root = dynamic_cast<QtRootView*>(&view.root())) {
    root->scene().viewChanged(view, property);
  }
}

void QtScreen::willAnimate(Duration duration) {
  // It covers what changes until the present block ends.
  animationDuration_ = duration;
  loop_.mainQueue().async([this, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) animationDuration_ = Duration::zero();
  });
}

void QtScreen::willFlip(platform::UIView& view, Duration duration) {
  if (auto* root = dynamic_cast<QtRootView*>(&view.root())) root->scene().flip(view, duration);
}

}  // namespace corvana::devices
