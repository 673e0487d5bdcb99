#pragma once

#include <optional>
#include <string>

#include "platform/uikit/Controls.h"
#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIImage.h"

namespace corvana {

/// What a prompt says about the user's last move; it chooses the colours.
enum class PromptType { success, error, info };

/// Where a prompt sits relative to its oval or frame.
enum class LabelPosition { top, center, bottom };

struct Layout {
  LabelPosition labelPosition = LabelPosition::center;
};

/// Colours of a capture screen and of its retry screen. An absent one leaves the fall-back.
struct Colors {
  std::optional<platform::UIColor> successLabelTextColor;
  std::optional<platform::UIColor> successLabelBackgroundColor;
  std::optional<platform::UIColor> errorLabelTextColor;
  std::optional<platform::UIColor> errorLabelBackgroundColor;
  std::optional<platform::UIColor> retryScreenBackgroundColor;
  std::optional<platform::UIColor> retryScreenLabelTextColor;
  std::optional<platform::UIColor> retryScreenImageTintColor;
  std::optional<platform::UIColor> retryScreenButtonTextColor;
  std::optional<platform::UIColor> retryScreenButtonBackgroundColor;
};

struct Fonts {
  std::optional<platform::UIFont> labelFont;
  std::optional<platform::UIFont> retryScreenLabelFont;
  std::optional<platform::UIFont> retryScreenButtonFont;
};

}  // namespace corvana
