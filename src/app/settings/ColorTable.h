#pragma once

#include <array>
#include <optional>
#include <string>
#include <utility>

#include "corvana/Appearance.h"

namespace corvana::app {

using ColorField = std::optional<platform::UIColor> corvana::Colors::*;

/// The colours of a capture by their keys in themes and scripts.
inline constexpr std::array<std::pair<const char*, ColorField>, 9> kColorKeys{
    {{"successLabelTextColor", &corvana::Colors::successLabelTextColor},
     {"successLabelBackgroundColor", &corvana::Colors::successLabelBackgroundColor},
     {"errorLabelTextColor", &corvana::Colors::errorLabelTextColor},
     {"errorLabelBackgroundColor", &corvana::Colors::errorLabelBackgroundColor},
     {"retryScreenBackgroundColor", &corvana::Colors::retryScreenBackgroundColor},
     {"retryScreenLabelTextColor", &corvana::Colors::retryScreenLabelTextColor},
     {"retryScreenImageTintColor", &corvana::Colors::retryScreenImageTintColor},
     {"retryScreenButtonTextColor", &corvana::Colors::retryScreenButtonTextColor},
     {"retryScreenButtonBackgroundColor", &corvana::Colors::retryScreenButtonBackgroundColor}}};

/// A colour as "#1B5E9E", or with its opacity as "#1B5E9EFF"; absent when the text is none.
std::optional<platform::UIColor> parseColor(const std::string& text);

}  // namespace corvana::app
