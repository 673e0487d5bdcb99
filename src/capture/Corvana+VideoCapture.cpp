#include <memory>
#include <utility>

#include "capture/Bundle+Framework.h"
#include "capture/Corvana+VideoCapture.h"
#include "capture/VideoCapturePresentableViewController.h"
#include "capture/VideoCaptureViewController.h"
#include "corvana/StoryboardIdentifier.h"

namespace corvana::capture {
namespace {

using platform::UIModalPresentationStyle;
using platform::UINavigationController;
using platform::UIViewController;

std::shared_ptr<VideoCapturePresentableViewController> presentableViewController(
    platform::Environment& environment) {
  const auto storyboard = moduleBundle(environment).storyboard(environment, "VideoCapture");
  if (!storyboard) return nullptr;
  return std::dynamic_pointer_cast<VideoCapturePresentableViewController>(
      storyboard->instantiateViewController(
          corvana::storyboardIdentifier<VideoCaptureViewController>()));
}

}  // namespace

void videoIDCapture(UIViewController& from, corvana::DetectedData front,
                    std::optional<corvana::DetectedData> back, std::string text,
                    Completion completion) {
  platform::Environment& environment = from.environment();
  const auto presentable = presentableViewController(environment);
  if (!presentable) return;
  presentable->idValidationFront = std::move(front);
  presentable->idValidationBack = std::move(back);
  presentable->text = std::move(text);
  presentable->videoIdCompletion = std::move(completion);
  const auto navigation = std::make_shared<UINavigationController>(
      environment, std::dynamic_pointer_cast<UIViewController>(presentable));
  navigation->setNavigationBarHidden(true);
  navigation->setModalPresentationStyle(UIModalPresentationStyle::fullScreen);
  from.present(navigation, true);
}

}  // namespace corvana::capture
