#include "capture/PromptColors.h"

#include "corvana/CaptureSessionViewController.h"

namespace corvana::capture {

using corvana::PromptType;
namespace colors = platform::colors;

PromptColors promptColors(PromptType type, const corvana::Colors& table) {
  switch (type) {
    case PromptType::success:
      return {table.successLabelTextColor.value_or(colors::kWhite),
              table.successLabelBackgroundColor.value_or(
                  corvana::CaptureSessionViewController::greenColor)};
    case PromptType::error:
      return {table.errorLabelTextColor.value_or(colors::kWhite),
              table.errorLabelBackgroundColor.value_or(colors::kRed)};
    case PromptType::info:
      break;
  }
  return {colors::kWhite, colors::kGray};
}

}  // namespace corvana::capture
