#pragma once

#include <memory>

class QGuiApplication;

namespace devices {

/// The one application object of a program with windows; made first, destroyed last, on the thread
/// that is to be the main queue. Draws without graphics hardware unless QT_QUICK_BACKEND or
/// QSG_RHI_BACKEND says otherwise.
class QtApplication {
 public:
  /// True when a window can be shown: there is a display, or QT_QPA_PLATFORM names a platform.
  static bool isPossible();

  /// One that stays to the end of the process, where no `main` ends it: the toolkit keeps pictures
  /// that it frees only as long as there is one.
  static QtApplication& ofProcess();

  QtApplication();
  ~QtApplication();

 private:
  std::unique_ptr<QGuiApplication> application_;
};

}  // namespace devices
