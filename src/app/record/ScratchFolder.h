#pragma once

#include <filesystem>

#include "platform/foundation/Fault.h"

namespace corvana::app {

/// A folder for its owner only, which goes with all that lies in it.
class ScratchFolder {
 public:
  static platform::Expected<ScratchFolder> make();
  ~ScratchFolder();
  ScratchFolder(ScratchFolder&& other) noexcept;
  ScratchFolder& operator=(ScratchFolder&&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  explicit ScratchFolder(std::filesystem::path path) : path_(std::move(path)) {}

  std::filesystem::path path_;
};

}  // namespace corvana::app
