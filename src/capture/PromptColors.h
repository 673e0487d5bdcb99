#pragma once

#include "corvana/Appearance.h"

namespace corvana::capture {

struct PromptColors {
  platform::UIColor text;
  platform::UIColor background;
};

/// The table's colours for the type, with white on the host's green, red or gray where it has none.
PromptColors promptColors(corvana::PromptType type, const corvana::Colors& table);

}  // namespace corvana::capture
