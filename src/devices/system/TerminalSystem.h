#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <utility>

#include "platform/Environment.h"

namespace corvana::devices {

/// Prints console lines to a stream, each as a whole. Any thread.
class StreamConsole final : public platform::Console {
 public:
  explicit StreamConsole(std::ostream& out) : out_(out) {}
  void print(std::string_view line) override {
    const std::lock_guard lock(mutex_);
    out_ << line << std::endl;
  }

 private:
  std::ostream& out_;
  std::mutex mutex_;
};

/// A machine without a page of settings for the application, unless one is supplied.
class NoSettingsApplication final : public platform::UIApplication {
 public:
  NoSettingsApplication() = default;
  /// `onOpen` gets the address when the user asks for it; both must be given.
  NoSettingsApplication(std::string settingsURL, std::function<void(const std::string&)> onOpen)
      : settingsURL_(std::move(settingsURL)), onOpen_(std::move(onOpen)) {}

  std::optional<std::string> openSettingsURLString() const override { return settingsURL_; }
  void open(const std::string& url) override {
    if (onOpen_) onOpen_(url);
  }

 private:
  std::optional<std::string> settingsURL_;
  std::function<void(const std::string&)> onOpen_;
};

/// Tells of each sound instead of playing it: a terminal has none.
class ReportingSystemSounds final : public platform::SystemSounds {
 public:
  explicit ReportingSystemSounds(std::function<void(platform::SystemSoundID)> report)
      : report_(std::move(report)) {}
  void play(platform::SystemSoundID sound) override { report_(sound); }

 private:
  std::function<void(platform::SystemSoundID)> report_;
};

}  // namespace corvana::devices
