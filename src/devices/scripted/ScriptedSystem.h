#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Environment.h"

namespace corvana::devices {

/// Notes the pages that were opened.
class ScriptedApplication final : public platform::UIApplication {
 public:
  std::optional<std::string> settingsURL = "app-settings:";
  std::vector<std::string> opened;

  std::optional<std::string> openSettingsURLString() const override { return settingsURL; }
  void open(const std::string& url) override { opened.push_back(url); }
};

/// Notes the sounds that were played.
class RecordingSounds final : public platform::SystemSounds {
 public:
  std::vector<platform::SystemSoundID> played;
  std::function<void(platform::SystemSoundID)> onPlay;  ///< may be empty

  void play(platform::SystemSoundID sound) override {
    played.push_back(sound);
    if (onPlay) onPlay(sound);
  }
};

/// Keeps the lines of the console. One thread.
class CapturingConsole final : public platform::Console {
 public:
  std::vector<std::string> lines;
  std::function<void(std::string_view)> onPrint;  ///< may be empty

  void print(std::string_view line) override {
    lines.emplace_back(line);
    if (onPrint) onPrint(line);
  }
};

}  // namespace corvana::devices
