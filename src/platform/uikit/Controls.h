#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/uikit/UIImage.h"
#include "platform/uikit/UIView.h"

namespace corvana::platform {

struct UIFont {
  std::string family;
  double pointSize = 17;
  bool operator==(const UIFont&) const = default;
};

/// A plain text with a colour on stretches of it; positions count UTF-16 code units.
struct NSAttributedString {
  struct Run {
    int location = 0;
    int length = 0;
    UIColor foregroundColor;
    bool operator==(const Run&) const = default;
  };
  std::string string;
  std::vector<Run> runs;
  bool operator==(const NSAttributedString&) const = default;
};

class UILabel final : public UIView {
 public:
  const std::optional<std::string>& text() const { return text_; }
  /// Drops the attributed text.
  void setText(std::optional<std::string> text);
  const std::optional<NSAttributedString>& attributedText() const { return attributedText_; }
  void setAttributedText(NSAttributedString text);
  const UIColor& textColor() const { return textColor_; }
  void setTextColor(const UIColor& color);
  const UIFont& font() const { return font_; }
  void setFont(const UIFont& font);

 private:
  std::optional<std::string> text_;
  std::optional<NSAttributedString> attributedText_;
  UIColor textColor_ = colors::kBlack;
  UIFont font_;
};

class UIImageView final : public UIView {
 public:
  const UIImageRef& image() const { return image_; }
  void setImage(UIImageRef image);

 private:
  UIImageRef image_;
};

/// A push button; its one action runs when a touch reaches it.
class UIButton final : public UIView {
 public:
  const std::string& title() const { return title_; }
  void setTitle(std::string title);
  const UIColor& titleColor() const { return titleColor_; }
  void setTitleColor(const UIColor& color);
  /// Null when the button shows no title.
  UILabel* titleLabel() { return titleLabel_.get(); }
  bool isEnabled() const { return enabled_; }
  void setEnabled(bool enabled);

  bool hasAction() const { return static_cast<bool>(action_); }
  void setAction(std::function<void()> action) { action_ = std::move(action); }
  /// False, and nothing done, when the button does not answer at this moment.
  bool touchUpInside();

 protected:
  bool isEnabledForTouch() const override { return enabled_; }

 private:
  std::string title_;
  UIColor titleColor_ = colors::kWhite;
  std::shared_ptr<UILabel> titleLabel_ = std::make_shared<UILabel>();
  bool enabled_ = true;
  std::function<void()> action_;
};

class UIProgressView final : public UIView {
 public:
  /// From 0 to 1.
  float progress() const { return progress_; }
  /// Whether the bar is to be seen moving to its present value, instead of jumping there.
  bool isProgressAnimated() const { return progressAnimated_; }
  void setProgress(float progress, bool animated);

 private:
  float progress_ = 0;
  bool progressAnimated_ = false;
};

}  // namespace corvana::platform
