#include "capture/ControllerFactories.h"

#include <memory>

#include "capture/VideoCaptureViewController.h"
#include "capture/VideoRetryViewController.h"
#include "corvana/StoryboardIdentifier.h"

namespace capture {
namespace {

template <class Controller>
platform::ControllerFactories::value_type factory() {
  return {corvana::storyboardIdentifier<Controller>(), [](platform::Environment& environment) {
            return std::make_shared<Controller>(environment);
          }};
}

}  // namespace

platform::ControllerFactories controllerFactories() {
  return {factory<VideoCaptureViewController>(), factory<VideoRetryViewController>()};
}

}  // namespace capture
