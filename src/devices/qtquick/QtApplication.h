#pragma once

#include <memory>

class QGuiApplication;

namespace corvana::devices {

/// The one application object of a program with windows; made first, destroyed last, on the thread
/// that is to be the main queue. Draws without graphics hardware unless QT_QUICK_BACKEND or
/// QSG_RHI_BACKEND says otherwise, and leaves the process the C locale that it has.
class QtApplication {
 public:
  /// Whether a window can be shown: there is a display, or QT_QPA_PLATFORM names a platform.
  static bool isPossible();

  /// An application object that stays to the end of the process, for programs whose `main` makes
  /// none: the toolkit keeps pictures that it frees only as long as there is one.
  static QtApplication& ofProcess();

  QtApplication();
  ~QtApplication();

 private:
  std::unique_ptr<QGuiApplication> application_;
};

}  // namespace corvana::devices
