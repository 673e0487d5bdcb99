#include "devices/screen/DirectoryBundle.h"

#include <system_error>
#include <utility>

namespace corvana::devices {

std::optional<std::filesystem::path> DirectoryBundle::path(const std::string& resource,
                                                           const std::string& type) const {
  std::error_code error;
  auto file = folder_ / (resource + "." + type);
  if (!std::filesystem::is_regular_file(file, error)) return {};
  return file;
}

platform::UIImageRef DirectoryBundle::image(const std::string& name) {
  const auto known = images_.find(name);
  if (known != images_.end()) return known->second;
  if (!path(name, "svg") && !path(name, "png")) return nullptr;
  return images_[name] = std::make_shared<platform::UIImage>(nullptr, name);
}

std::shared_ptr<platform::UIStoryboard> DirectoryBundle::storyboard(
    platform::Environment& environment, const std::string& name) {
  return makeStoryboard_(environment, name);
}

}  // namespace corvana::devices
