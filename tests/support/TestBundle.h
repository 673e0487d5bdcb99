#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "platform/foundation/Bundle.h"

namespace corvana::tests {

/// The module's resources in a folder, each of which a test can take away. Any image name gives a
/// drawing, the same object each time.
class TestBundle final : public platform::Bundle {
 public:
  using StoryboardMaker = std::function<std::shared_ptr<platform::UIStoryboard>(
      platform::Environment&, const std::string& name)>;

  TestBundle(std::filesystem::path resources, StoryboardMaker makeStoryboard)
      : folder(std::move(resources)), makeStoryboard_(std::move(makeStoryboard)) {}

  std::filesystem::path folder;
  /// Names of images, storyboards and "resource.type" that are not there.
  std::set<std::string> missing;

  std::optional<std::filesystem::path> path(const std::string& resource,
                                            const std::string& type) const override {
    const std::string name = resource + "." + type;
    if (missing.contains(name) || !std::filesystem::exists(folder / name)) return {};
    return folder / name;
  }
  platform::UIImageRef image(const std::string& name) override {
    if (missing.contains(name)) return nullptr;
    auto& image = images_[name];
    if (!image) image = std::make_shared<platform::UIImage>(nullptr, name);
    return image;
  }
  std::shared_ptr<platform::UIStoryboard> storyboard(platform::Environment& environment,
                                                     const std::string& name) override {
    return missing.contains(name) ? nullptr : makeStoryboard_(environment, name);
  }

 private:
  StoryboardMaker makeStoryboard_;
  std::map<std::string, platform::UIImageRef> images_;
};

}  // namespace corvana::tests
