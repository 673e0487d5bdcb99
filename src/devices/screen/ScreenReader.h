#pragma once

#include <memory>

#include "devices/screen/ScreenHub.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::platform {
class UIAlertController;
}

namespace corvana::devices {

/// Follows the module's screens as a user's eyes do: knows which one is in sight, and looks at the
/// capture screen when all that is due at an instant has been done. Whoever tells of what is seen
/// derives from it. Add it to the `ScreenHub`; main queue.
class ScreenReader : public ScreenListener {
 public:
  /// Looks `settling` after the last change, at the end of the same instant when that is zero.
  ScreenReader(platform::RunLoop& loop, platform::Duration settling);

  /// Looks once all that is due has been done; for changes beside the screen.
  void lookSoon();

  void willPresent(platform::UIViewController& controller) override;
  void didPresent(platform::UIViewController& controller) override;
  void didDismiss(platform::UIViewController& controller) override;
  void viewChanged(platform::UIView& view, const char* property) override;

 protected:
  virtual void captureScreenCame() = 0;
  virtual void captureScreenLeft() = 0;
  virtual void alertCame(const platform::UIAlertController& alert) = 0;
  virtual void alertLeft() = 0;
  virtual void retryScreenCame(platform::UIView& root) = 0;
  virtual void retryScreenLeft() = 0;
  virtual void look() = 0;

  /// The capture screen, while it is there and no retry screen covers it; else null.
  platform::UIView* screenInSight() const { return covered_ ? nullptr : screen_; }
  bool isCovered() const { return covered_; }

 private:
  platform::RunLoop& loop_;
  const platform::Duration settling_;
  platform::UIView* screen_ = nullptr;
  bool covered_ = false;
  bool lookPending_ = false;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace corvana::devices
