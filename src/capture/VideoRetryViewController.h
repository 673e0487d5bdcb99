#pragma once

#include <cstdint>
#include <functional>

#include "platform/uikit/UIStoryboard.h"
#include "platform/uikit/UIViewController.h"

namespace corvana::capture {

/// Why the user has to try again.
enum class RetryType : std::uint8_t { selfieCapture, idCapture, liveFaceLost, spokenText };

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
  using WeakButton = platform::Outlet<platform::UIButton, std::weak_ptr>;
  enum class Retry : bool { no, yes };

  using UIViewController::dismiss;
  void dismiss(Retry retry);

  platform::Outlet<platform::UILabel> label_;
  platform::Outlet<platform::UIImageView> imageView_;
  WeakButton retryButton_;
  WeakButton cancelButton_;
  platform::OutletCollection<platform::UIButton> buttons_;
};

}  // namespace corvana::capture
