#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/uikit/UIImage.h"

namespace corvana::platform {

struct Environment;
class UIStoryboard;

/// Resources that belong to one piece of software. Main queue only.
class Bundle {
 public:
  virtual ~Bundle() = default;
  /// Absent when there is no such resource.
  virtual std::optional<std::filesystem::path> path(const std::string& resource,
                                                    const std::string& type) const = 0;
  /// The same object at each call; null when there is none of that name.
  virtual UIImageRef image(const std::string& name) = 0;
  /// Null when there is none of that name; may be a new one at each call.
  virtual std::shared_ptr<UIStoryboard> storyboard(Environment& environment,
                                                   const std::string& name) = 0;
};

}  // namespace corvana::platform
