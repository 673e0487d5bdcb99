#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/uikit/Controls.h"

namespace corvana::tests {

/// What the user sees of the capture screen, in words: what each thing is called, and how it looks.
using Sight = std::map<std::string, std::string>;

inline constexpr const char* kHidden = "hidden";

/// Read off a screen's views.
Sight sightOf(platform::UIView& screen);

std::string inWords(const platform::UIColor& color);
std::string inWords(const platform::CGRect& rect);
/// A prompt in its box; hidden without a text.
std::string inWords(const std::optional<std::string>& text, const platform::UIColor& textColor,
                    const platform::UIColor& background);
/// A text, and which stretches of it are coloured.
std::string inWords(const platform::NSAttributedString& text);

}  // namespace corvana::tests
