#pragma once

#include <memory>
#include <string>

#include "platform/uikit/UIStoryboard.h"

namespace corvana::devices {

class QtScreen;

/// Scenes as QML files of one folder. Camera screens name their `preview` and `outlines`.
class QtStoryboard final : public platform::UIStoryboard {
 public:
  QtStoryboard(platform::Environment& environment, QtScreen& screen, std::string name,
               platform::ControllerFactories factories);

  std::shared_ptr<platform::UIViewController> instantiateViewController(
      const std::string& identifier) override;

 private:
  std::shared_ptr<platform::UIView> load(const std::string& identifier,
                                         platform::UIViewController& controller);

  platform::Environment& environment_;
  QtScreen& screen_;
  std::string name_;
  platform::ControllerFactories factories_;
};

}  // namespace corvana::devices
