#include "ScreenWorld.h"

#include <QQmlContext>
#include <QtTest>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "devices/qtquick/QtApplication.h"

namespace corvana::tests {
namespace {

namespace fs = std::filesystem;

/// What the QML engine complained of.
QStringList& complaints() {
  static QStringList all;
  return all;
}

void takeDown(QtMsgType type, const QMessageLogContext&, const QString& message) {
  if (type != QtDebugMsg && message.contains(QStringLiteral(".qml"))) complaints() << message;
}

QQuickItem* find(const QQuickItem& below, const QString& name) {
  for (QQuickItem* child : below.childItems()) {
    if (child->objectName() == name) return child;
    if (QQuickItem* found = find(*child, name)) return found;
  }
  return nullptr;
}

}  // namespace

ScreenWorld::ScreenWorld() {
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  devices::QtApplication::ofProcess();
  complaints().clear();
  qInstallMessageHandler(takeDown);
}

ScreenWorld::~ScreenWorld() {
  // The window goes before the world that it shows.
  world.root->dismiss(false);
  world.advance(1000);
  world.environment.presentations = nullptr;
  world.environment.animations = nullptr;
  EXPECT_TRUE(complaints().isEmpty()) << complaints().join('\n').toStdString();
}

void ScreenWorld::open(const platform::CGSize& size, const fs::path& folder) {
  screen = std::make_unique<devices::QtScreen>(
      world.loop,
      devices::QtScreen::Setup{folder.empty() ? fs::path(STORYBOARDS) : folder, DRAWINGS, size});
  hub.add(*screen);
  world.makeStoryboard = screen->makeStoryboards(world.factories);
  world.environment.presentations = &hub;
  world.environment.animations = screen.get();
  world.environment.mainScreen.bounds = {0, 0, size.width, size.height};
}

QQuickItem& ScreenWorld::item(const std::string& id) {
  auto* root = dynamic_cast<devices::QtRootView*>(&world.topmost().view());
  platform::require(root != nullptr, "no scene of the storyboard is on top");
  auto* found = qobject_cast<QQuickItem*>(
      qmlContext(&root->scene().item())->objectForName(QString::fromStdString(id)));
  platform::require(found != nullptr, "the topmost scene has no item \"" + id + "\"");
  return *found;
}

QQuickItem& ScreenWorld::alertButton() {
  QQuickItem* button = find(*screen->window().contentItem(), QStringLiteral("alertButton0"));
  platform::require(button != nullptr, "no alert is shown");
  return *button;
}

void ScreenWorld::click(const QQuickItem& target) {
  QTest::mouseClick(&screen->window(), Qt::LeftButton, {}, place(target).center().toPoint());
  world.advance(1);
}

QColor ScreenWorld::pixel(double x, double y) {
  return screen->picture().pixelColor(static_cast<int>(x), static_cast<int>(y));
}

EditedStoryboards::EditedStoryboards(const std::string& file, const std::string& from,
                                     const std::string& to) {
  std::string pattern = fs::temp_directory_path() / "storyboards-XXXXXX";
  folder_ = mkdtemp(pattern.data());
  fs::copy(STORYBOARDS, folder_, fs::copy_options::recursive);
  const fs::path path = folder_ / "VideoCapture" / file;
  std::stringstream text;
  text << std::ifstream(path).rdbuf();
  std::string content = text.str();
  const auto at = content.find(from);
  platform::require(at != std::string::npos, "\"" + file + "\" does not hold \"" + from + "\"");
  std::ofstream(path) << content.replace(at, from.size(), to);
}

EditedStoryboards::~EditedStoryboards() {
  fs::remove_all(folder_);
}

}  // namespace corvana::tests
