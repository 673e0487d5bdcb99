#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "devices/headless/SceneLayout.h"
#include "devices/screen/DirectoryBundle.h"
#include "platform/uikit/UIStoryboard.h"

namespace corvana::devices {

/// Builds scenes from tables, with true frames and, in camera screens, a preview layer in front of
/// all views that are not raised above it. A scene that lacks an outlet or an action of its
/// controller, or calls an action that the controller does not offer, ends the program naming it
/// when the controller's view is loaded.
class HeadlessStoryboard final : public platform::UIStoryboard {
 public:
  HeadlessStoryboard(platform::Environment& environment, std::vector<SceneLayout> scenes,
                     platform::ControllerFactories factories);

  std::shared_ptr<platform::UIViewController> instantiateViewController(
      const std::string& identifier) override;

  /// The constraint that was connected last under that name; null when none was or its controller
  /// is gone.
  std::shared_ptr<platform::NSLayoutConstraint> constraint(const std::string& name) const;

 private:
  std::shared_ptr<platform::UIView> load(const SceneLayout& scene,
                                         platform::UIViewController& controller);

  platform::Environment& environment_;
  std::vector<SceneLayout> scenes_;
  platform::ControllerFactories factories_;
  std::map<std::string, std::weak_ptr<platform::NSLayoutConstraint>> constraints_;
};

/// The storyboard "VideoCapture" of the headless screen with these controllers; null for others.
DirectoryBundle::StoryboardMaker headlessStoryboards(platform::ControllerFactories factories);

}  // namespace corvana::devices
