#include "platform/uikit/Controls.h"

#include <utility>

namespace corvana::platform {

void UILabel::setText(std::optional<std::string> text) {
  text_ = std::move(text);
  attributedText_.reset();
  changed("text");
}

void UILabel::setAttributedText(NSAttributedString text) {
  text_ = text.string;
  attributedText_ = std::move(text);
  changed("attributedText");
}

void UILabel::setTextColor(const UIColor& color) {
  textColor_ = color;
  changed("textColor");
}

void UILabel::setFont(const UIFont& font) {
  font_ = font;
  changed("font");
}

void UIImageView::setImage(UIImageRef image) {
  image_ = std::move(image);
  changed("image");
}

void UIButton::setTitle(std::string title) {
  title_ = std::move(title);
  changed("title");
}

void UIButton::setTitleColor(const UIColor& color) {
  titleColor_ = color;
  changed("titleColor");
}

void UIButton::setEnabled(bool enabled) {
  enabled_ = enabled;
  changed("enabled");
}

bool UIButton::touchUpInside() {
  if (!action_ || !answersTouch()) return false;
  const auto keepAlive = shared_from_this();
  action_();
  return true;
}

void UIProgressView::setProgress(float progress, bool animated) {
  progress_ = progress;
  progressAnimated_ = animated;
  changed("progress");
}

}  // namespace corvana::platform
