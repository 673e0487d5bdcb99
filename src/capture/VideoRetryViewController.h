#pragma once

#include <functional>

#include "platform/uikit/UIStoryboard.h"
#include "platform/uikit/UIViewController.h"

namespace capture {

/// Why the user has to try again.
enum class RetryType { selfieCapture, idCapture, liveFaceLost, spokenText };

/// Names what went wrong and offers to try again or to give up. Main queue only.
class VideoRetryViewController final : public platform::UIViewController {
 public:
  static constexpr const char* kClassName = "VideoRetryViewController";

  explicit VideoRetryViewController(platform::Environment& environment)
      : UIViewController(environment) {}

  /// Set before the view loads.
  RetryType type = RetryType::selfieCapture;
  /// True for another try; called once, when the screen has gone.
  std::function<void(bool retry)> retryCompletion;

  void declareOutlets(platform::OutletBinder& binder) override;
  void viewDidLoad() override;

 private:
  void dismissAnswering(bool retry);

  platform::Outlet<platform::UILabel> label_;
  platform::Outlet<platform::UIImageView> imageView_;
  platform::Outlet<platform::UIButton> retryButton_;
  platform::Outlet<platform::UIButton> cancelButton_;
  platform::OutletCollection<platform::UIButton> buttons_;
};

}  // namespace capture
