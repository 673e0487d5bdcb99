#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/uikit/Controls.h"

namespace tests {

/// A prompt and the box behind it.
struct Prompt {
  bool hidden = true;
  std::optional<std::string> text;
  platform::UIColor textColor;
  platform::UIColor background;
  bool operator==(const Prompt&) const = default;
};

/// What the capture screen shows: every outlet that the flow changes.
struct Sight {
  using Text = std::optional<std::string>;

  Text caption;
  Prompt face;
  platform::UIColor oval;
  Prompt card;
  platform::UIColor frame;
  std::string silhouette;  ///< name of its image; "" for none
  float progress = 0;
  bool progressHidden = true;
  bool bezelsHidden = false;
  bool selfieHidden = false;
  double selfieAlpha = 1;
  double cardAlpha = 0;
  double readingAlpha = 0;
  Text reading;
  std::vector<platform::NSAttributedString::Run> highlights;
  Text countdown;
  bool selfieDebugHidden = true;
  bool cardDebugHidden = true;
  Text liveness;
  Text realness;
  Text topMatches;
  std::optional<platform::CGRect> ellipse;
  int outlines = 0;  ///< rectangles drawn on the screen

  bool operator==(const Sight&) const = default;
};

/// The same, read off a screen's views.
Sight sightOf(platform::UIView& screen);
/// A line for each thing that differs, "what: `expected` but `seen`".
std::string difference(const Sight& expected, const Sight& seen);

}  // namespace tests
