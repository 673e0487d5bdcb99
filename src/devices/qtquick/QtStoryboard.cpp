#include "devices/qtquick/QtStoryboard.h"

#include <utility>

#include "corvana/CaptureSessionViewController.h"
#include "devices/qtquick/QtScene.h"
#include "devices/qtquick/QtScreen.h"

namespace corvana::devices {
QtStoryboard::QtStoryboard(platform::Environment& environment, QtScreen& screen, std::string name,
                           platform::ControllerFactories factories)
    : environment_(environment),
      screen_(screen),
      name_(std::move(name)),
      factories_(std::move(factories)) {}

std::shared_ptr<platform::UIViewController> QtStoryboard::instantiateViewController(
    const std::string& identifier) {
  const auto factory = factories_.find(identifier);
  if (factory == factories_.end()) return nullptr;
  if (!screen_.hasScene(name_, identifier)) return nullptr;
  auto controller = factory->second(environment_);
  controller->setStoryboard(shared_from_this());
  // The controller owns this storyboard.
  controller->setViewLoader([this, identifier](auto& owner) { return load(identifier, owner); });
  return controller;
}

std::shared_ptr<platform::UIView> QtStoryboard::load(const std::string& identifier,
                                                     platform::UIViewController& controller) {
  auto root = screen_.loadScene(name_, identifier);
  QtScene& scene = root->scene();
  controller.declareOutlets(scene);
  scene.finish();
  if (auto* camera = dynamic_cast<corvana::CaptureSessionViewController*>(&controller)) {
    camera->setVideoPreviewLayer(scene.addPreviewLayer());
  }
  return root;
}

}  // namespace corvana::devices
