// Runs a video identification in a window that the application has already. The host here only
// plays its part; an application puts its own camera and recorder in its place, as
// docs/host-contract.md says. usage: embed [SECONDS]      the close button is pressed after so many
// seconds
#include <QGuiApplication>
#include <cstdlib>
#include <iostream>

#include "capture/ControllerFactories.h"
#include "capture/Corvana+VideoCapture.h"
#include "devices/qtquick/QtRunLoop.h"
#include "devices/qtquick/QtScreen.h"
#include "devices/screen/ViewSearch.h"
#include "devices/scripted/ScriptedHost.h"
#include "devices/system/TerminalSystem.h"
#include "platform/uikit/Controls.h"

int main(int argc, char** argv) {
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  QGuiApplication application(argc, argv);
  QQuickWindow window;  // the application's own
  window.resize(540, 960);
  window.show();

  devices::QtRunLoop loop;
  devices::QtScreen::Setup setup{RESOURCES "/screen", RESOURCES "/capture"};
  setup.window = &window;
  devices::QtScreen screen(loop, setup);
  devices::ScreenHub hub;
  hub.add(screen);

  platform::NotificationCenter notifications;
  devices::StreamConsole console(std::cerr);
  devices::NoSettingsApplication settings;
  devices::ScriptedMediaDevices media(loop);
  devices::ScriptedSpeechAuthorization speech(loop);
  devices::ReportingSystemSounds sounds([&](auto) { screen.flash(); });
  devices::ScriptedHost host(loop, media);
  devices::DirectoryBundle bundle(RESOURCES "/capture",
                                  screen.makeStoryboards(capture::controllerFactories(host)));
  platform::Environment world{
      .runLoop = loop,
      .bundle = bundle,
      .notificationCenter = notifications,
      .console = console,
      .application = settings,
      .mediaDevices = media,
      .speechAuthorization = speech,
      .systemSounds = sounds,
      .mainScreen = {{0, 0, screen.size().width, screen.size().height}},
      .animations = &screen,
      .presentations = &hub,
  };

  auto root = std::make_shared<platform::UIViewController>(world);
  auto screens = std::make_unique<platform::UIWindow>(root);
  corvana::DetectedData front;  // what was read from the card earlier
  front.type = "IDENTITY_CARD_FRONT";
  std::string outcome;
  capture::videoIDCapture(
      *root, front, std::nullopt, "I open this account for myself", [&](const auto& result) {
        outcome = result ? result->videoURL.string() : result.error().localizedDescription();
      });
  if (argc > 1) {
    loop.mainQueue().asyncAfter(platform::seconds(std::atof(argv[1])), [&] {
      auto* close = devices::findView<platform::UIButton>(screens->topmost().view(), "closeButton");
      if (close) close->touchUpInside();
    });
  }
  loop.runUntil([&] { return !outcome.empty(); }, platform::TimePoint::max());
  std::cout << outcome << '\n';
  root.reset();
  screens.reset();
  loop.shutDown();
}
