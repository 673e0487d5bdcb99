#include "capture/VideoRetryViewController.h"

#include <string>
#include <utility>

#include "corvana/IDCapture.h"
#include "corvana/OutletNames.h"
#include "corvana/SelfieCapture.h"

namespace corvana::capture {
namespace {

constexpr const char* kTryAgain = " Please try again";

/// What the screen takes from the tables of one of the two captures.
struct RetryAppearance {
  const corvana::Colors& colors;
  const corvana::Fonts& fonts;
  const platform::UIImageRef& image;
  const std::string& message;
  const std::string& retryTitle;
  const std::string& cancelTitle;
};

template <class Capture>
RetryAppearance appearanceOf() {
  return {Capture::colors,
          Capture::fonts,
          Capture::images.retryScreenImage,
          Capture::strings.retryScreenText,
          Capture::strings.retryButtonText,
          Capture::strings.cancelButtonText};
}

RetryAppearance appearanceFor(RetryType type) {
  return type == RetryType::idCapture ? appearanceOf<corvana::IDCapture>()
                                      : appearanceOf<corvana::SelfieCapture>();
}

std::string messageFor(RetryType type, const RetryAppearance& appearance) {
  switch (type) {
    case RetryType::liveFaceLost:
      return std::string("Live Face Lost.") + kTryAgain;
    case RetryType::spokenText:
      return std::string("Voice does not match text.") + kTryAgain;
    case RetryType::selfieCapture:
    case RetryType::idCapture:
      break;
  }
  return appearance.message;
}

}  // namespace

void VideoRetryViewController::declareOutlets(platform::OutletBinder& binder) {
  binder.outlet(outlets::kRetryLabel, label_);
  binder.outlet(outlets::kRetryImageView, imageView_);
  binder.outlet(outlets::kRetryButton, retryButton_);
  binder.outlet(outlets::kCancelButton, cancelButton_);
  binder.collection(outlets::kRetryButtons, buttons_);
  binder.action("retry", [this] { dismiss(Retry::yes); });
  binder.action("cancel", [this] { dismiss(Retry::no); });
}

void VideoRetryViewController::viewDidLoad() {
  UIViewController::viewDidLoad();
  const RetryAppearance appearance = appearanceFor(type);
  const corvana::Colors& colors = appearance.colors;
  const corvana::Fonts& fonts = appearance.fonts;

  if (const auto& color = colors.retryScreenBackgroundColor) view().setBackgroundColor(*color);
  label_->setText(messageFor(type, appearance));
  if (const auto& color = colors.retryScreenLabelTextColor) label_->setTextColor(*color);
  if (const auto& font = fonts.retryScreenLabelFont) label_->setFont(*font);
  if (appearance.image) imageView_->setImage(appearance.image);
  if (const auto& color = colors.retryScreenImageTintColor) imageView_->setTintColor(*color);
  for (const auto& button : buttons_) {
    if (const auto& color = colors.retryScreenButtonTextColor) button->setTitleColor(*color);
  }
  retryButton_->setTitle(appearance.retryTitle);
  cancelButton_->setTitle(appearance.cancelTitle);
  for (const auto& button : buttons_) {
    const auto& color = colors.retryScreenButtonBackgroundColor;
    if (color) button->setBackgroundColor(*color);
  }
  for (const auto& button : buttons_) {
    platform::UILabel* title = button->titleLabel();
    if (title && fonts.retryScreenButtonFont) title->setFont(*fonts.retryScreenButtonFont);
  }
}

void VideoRetryViewController::dismiss(Retry retry) {
  auto completion = std::exchange(retryCompletion, nullptr);
  dismiss(true, [completion = std::move(completion), retry] {
    if (completion) completion(retry == Retry::yes);
  });
}

}  // namespace corvana::capture
