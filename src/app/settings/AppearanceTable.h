#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/record/Files.h"
#include "app/run/Resources.h"

namespace corvana::app {

/// What only a window knows of its looks; the rest are the host's tables.
struct WindowLooks {
  double textScale = 1;  ///< times the size of all letters
  bool rightToLeft = false;
  bool reducedMotion = false;
  bool spokenHints = false;
  std::string voice = "en";  ///< code of the language in which hints are spoken
  /// What a screen reader says for signs: "close", "progress", "secondsLeft".
  std::map<std::string, std::string> words;
};

/// Sets colours, fonts, images, label positions and texts from a file, a JSON object {key: value};
/// docs/screen.md lists the keys. Pictures are looked up beside the file. Writes the host's static
/// tables, up to the first key that is wrong; the error is one sentence naming it.
Expected<void> applyAppearance(const std::filesystem::path& file, WindowLooks& looks);

/// A language, and a theme on top of it. The error is one sentence.
struct LooksWishes {
  bool ofWindow = false;  ///< begin with the standard theme of windows
  std::string language = "en";
  std::optional<std::filesystem::path> theme;
};
Expected<void> applyLooks(const LooksWishes& wishes, const Resources& resources,
                          WindowLooks& looks);

/// The languages of the screens, as a command's help names them: "ar, de, en (default) or fr".
std::string languageHelp();

struct TextEntry {
  std::string key;
  std::string* text;  ///< in the host's tables or in the looks
};

/// What a translation must hold: every text that a user can see or hear, but for the few that are
/// fixed.
std::vector<TextEntry> translatableTexts(WindowLooks& looks);

}  // namespace corvana::app
