#pragma once

#include <functional>
#include <map>
#include <string>

#include "platform/foundation/Bundle.h"
#include "platform/uikit/UIStoryboard.h"

namespace corvana::devices {

/// Resources that lie in one folder. An image is a drawing known by its name, there when the folder
/// has NAME.svg or NAME.png; storyboards are made by a function, which may return null.
class DirectoryBundle final : public platform::Bundle {
 public:
  using StoryboardMaker = std::function<std::shared_ptr<platform::UIStoryboard>(
      platform::Environment&, const std::string& name)>;

  DirectoryBundle(std::filesystem::path folder, StoryboardMaker makeStoryboard)
      : folder_(std::move(folder)), makeStoryboard_(std::move(makeStoryboard)) {}

  std::optional<std::filesystem::path> path(const std::string& resource,
                                            const std::string& type) const override;
  platform::UIImageRef image(const std::string& name) override;
  std::shared_ptr<platform::UIStoryboard> storyboard(platform::Environment& environment,
                                                     const std::string& name) override;

 private:
  std::filesystem::path folder_;
  StoryboardMaker makeStoryboard_;
  std::map<std::string, platform::UIImageRef> images_;
};

}  // namespace corvana::devices
