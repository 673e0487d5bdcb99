// Runs a video identification in a window that the application has already. The host here only
// plays its part; an application puts its own camera and recorder in its place, as
// docs/host-contract.md says. usage: embed [SECONDS]      the close button is pressed after so many
// seconds
#include <QGuiApplication>
#include <cstdlib>
#include <iostream>

#include <corvana/capture/ControllerFactories.h>
#include <corvana/capture/Corvana+VideoCapture.h>
#include <corvana/devices/qtquick/QtRunLoop.h>
#include <corvana/devices/qtquick/QtScreen.h>
#include <corvana/devices/screen/ViewSearch.h>
#include <corvana/devices/scripted/ScriptedHost.h>
#include <corvana/devices/system/SystemRandom.h>
#include <corvana/devices/system/TerminalSystem.h>
#include <corvana/platform/uikit/Controls.h>

int main(int argc, char** argv) {
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  QGuiApplication application(argc, argv);
  QQuickWindow window;  // the application's own
  window.resize(540, 960);
  window.show();

  corvana::devices::QtRunLoop loop;
  corvana::devices::QtScreen::Setup setup{RESOURCES "/screen", RESOURCES "/capture"};
  setup.window = &window;
  corvana::devices::QtScreen screen(loop, setup);
  corvana::devices::ScreenHub hub;
  hub.add(screen);

  corvana::platform::NotificationCenter notifications;
  corvana::devices::StreamConsole console(std::cerr);
  corvana::devices::NoSettingsApplication settings;
  corvana::devices::ScriptedMediaDevices media(loop);
  corvana::devices::ScriptedSpeechAuthorization speech(loop);
  corvana::devices::SystemRandom randomness;
  corvana::devices::ReportingSystemSounds sounds([&](auto) { screen.flash(); });
  corvana::devices::ScriptedHost host(loop, media);
  corvana::devices::DirectoryBundle bundle(
      RESOURCES "/capture", screen.makeStoryboards(corvana::capture::controllerFactories(host)));
  corvana::platform::Environment world{
      .runLoop = loop,
      .bundle = bundle,
      .notificationCenter = notifications,
      .console = console,
      .application = settings,
      .mediaDevices = media,
      .speechAuthorization = speech,
      .systemSounds = sounds,
      .randomness = randomness,
      .mainScreen = {{0, 0, screen.size().width, screen.size().height}},
      .animations = &screen,
      .presentations = &hub,
  };

  auto root = std::make_shared<corvana::platform::UIViewController>(world);
  auto screens = std::make_unique<corvana::platform::UIWindow>(root);
  corvana::DetectedData front;  // what was read from the card earlier
  front.type = "IDENTITY_CARD_FRONT";
  std::string outcome;
  corvana::capture::videoIDCapture(
      *root, front, std::nullopt, "I open this account for myself", [&](const auto& result) {
        outcome = result ? result->videoURL.string() : result.error().localizedDescription();
      });
  if (argc > 1) {
    loop.mainQueue().asyncAfter(corvana::platform::seconds(std::atof(argv[1])), [&] {
      auto* close = corvana::devices::findView<corvana::platform::UIButton>(
          screens->topmost().view(), "closeButton");
      if (close) close->touchUpInside();
    });
  }
  loop.runUntil([&] { return !outcome.empty(); }, corvana::platform::TimePoint::max());
  std::cout << outcome << '\n';
  root.reset();
  screens.reset();
  loop.shutDown();
}
