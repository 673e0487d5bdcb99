#include "devices/qtquick/QtApplication.h"

#include <QFont>
#include <QGuiApplication>
#include <QQuickWindow>
#include <clocale>
#include <string>

namespace corvana::devices {

bool QtApplication::isPossible() {
  return qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || qEnvironmentVariableIsSet("DISPLAY") ||
         qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

QtApplication& QtApplication::ofProcess() {
  static auto* const kApplication = new QtApplication;
  return *kApplication;
}

QtApplication::QtApplication() {
  if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND") &&
      !qEnvironmentVariableIsSet("QSG_RHI_BACKEND")) {
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  }
  // Arguments of the program are its own, not the toolkit's.
  static int count = 1;
  static char name[] = "videoid";
  static char* arguments[] = {name, nullptr};
  // The toolkit sets the C library to the user's locale, in which "0.44" is read as 0 and an i has
  // another upper case: not for the libraries that read models, nor for what is recorded.
  const std::string before = std::setlocale(LC_ALL, nullptr);
  application_ = std::make_unique<QGuiApplication>(count, arguments);
  std::setlocale(LC_ALL, before.c_str());
  QGuiApplication::setQuitOnLastWindowClosed(false);
  // The same letters on every machine, unless a theme names others.
  QGuiApplication::setFont(QFont(QStringLiteral("DejaVu Sans")));
}

QtApplication::~QtApplication() = default;

}  // namespace corvana::devices
