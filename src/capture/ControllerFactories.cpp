#include "capture/ControllerFactories.h"

#include <memory>

#include "capture/VideoCaptureViewController.h"
#include "capture/VideoRetryViewController.h"
#include "corvana/StoryboardIdentifier.h"

namespace corvana::capture {

platform::ControllerFactories controllerFactories(corvana::HostFactories& host,
                                                  corvana::DecisionObserver* decisions) {
  return {{corvana::storyboardIdentifier<VideoCaptureViewController>(),
           [&host, decisions](platform::Environment& environment) {
             return std::make_shared<VideoCaptureViewController>(environment, host, decisions);
           }},
          {corvana::storyboardIdentifier<VideoRetryViewController>(),
           [](platform::Environment& environment) {
             return std::make_shared<VideoRetryViewController>(environment);
           }}};
}

}  // namespace corvana::capture
