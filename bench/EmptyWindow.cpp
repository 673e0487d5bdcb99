// The least that a window costs: Qt's own, with nothing in it but a colour. Prints the milliseconds
// from the program's start to its first frame, and ends. Needs a display or
// QT_QPA_PLATFORM=offscreen.

#include <QGuiApplication>
#include <QQuickView>
#include <cstdio>

#include "ProgramClock.h"

int main(int argc, char** argv) {
  QGuiApplication application(argc, argv);
  QQuickView window;
  window.setColor(Qt::darkCyan);
  window.resize(540, 960);
  QObject::connect(
      &window, &QQuickWindow::frameSwapped, &application,
      [] {
        std::printf("%.0f\n", corvana::sinceStart());
        QCoreApplication::quit();
      },
      Qt::DirectConnection);
  window.show();
  return QGuiApplication::exec();
}
