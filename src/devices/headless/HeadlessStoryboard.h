#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "devices/headless/SceneLayout.h"
#include "platform/uikit/UIStoryboard.h"

namespace devices {

/// Builds scenes from tables, with true frames and a preview layer behind camera screens. A scene
/// that lacks an outlet or an action of its controller, or calls an action that the controller does
/// not offer, ends the program naming it.
class HeadlessStoryboard final : public platform::UIStoryboard {
 public:
  HeadlessStoryboard(platform::Environment& environment, std::vector<SceneLayout> scenes,
                     platform::ControllerFactories factories);

  std::shared_ptr<platform::UIViewController> instantiateViewController(
      const std::string& identifier) override;

  /// As connected last under that name; null when it never was or its controller is gone.
  std::shared_ptr<platform::NSLayoutConstraint> constraint(const std::string& name) const;

 private:
  platform::Environment& environment_;
  std::vector<SceneLayout> scenes_;
  platform::ControllerFactories factories_;
  std::map<std::string, std::weak_ptr<platform::NSLayoutConstraint>> constraints_;
};

}  // namespace devices
