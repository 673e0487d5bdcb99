#include "devices/qtquick/QtStoryboard.h"

#include <utility>

#include "corvana/CaptureSessionViewController.h"
#include "devices/qtquick/Drawings.h"
#include "devices/qtquick/PreviewItem.h"
#include "devices/qtquick/QtScene.h"
#include "devices/qtquick/QtScreen.h"

namespace devices {
namespace {

void addPreview(platform::UIViewController& controller, QtRootView& root) {
  auto* camera = dynamic_cast<corvana::CaptureSessionViewController*>(&controller);
  if (!camera) return;
  static_cast<void>(root.scene().part<PreviewItem>("preview"));
  OutlineItem& outlines = root.scene().part<OutlineItem>("outlines");
  const auto preview = std::make_shared<platform::CALayer>();
  root.layer().addSublayer(preview);
  camera->setVideoPreviewLayer(preview);
  root.layer().setObserver([&outlines, &root] { outlines.show(root.layer()); });
}

}  // namespace

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
  const auto root = screen_.loadScene(name_, identifier);
  if (!root) return nullptr;
  auto controller = factory->second(environment_);
  addPreview(*controller, *root);
  controller->setView(root);
  controller->setStoryboard(shared_from_this());
  controller->declareOutlets(root->scene());
  root->scene().finish();
  return controller;
}

}  // namespace devices
