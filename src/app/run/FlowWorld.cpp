#include "app/run/FlowWorld.h"

#include <utility>

#include "capture/Corvana+VideoCapture.h"

namespace corvana::app {

FlowWorld::FlowWorld(platform::RunLoop& loop, FlowScreen& screen,
                     const std::filesystem::path& resources,
                     const platform::ControllerFactories& controllers, const Devices& devices)
    : bundle_(resources, screen.makeStoryboards(controllers)),
      environment_{.runLoop = loop,
                   .bundle = bundle_,
                   .notificationCenter = notificationCenter_,
                   .console = devices.console,
                   .application = devices.application,
                   .mediaDevices = devices.mediaDevices,
                   .speechAuthorization = devices.speechAuthorization,
                   .systemSounds = devices.systemSounds,
                   .randomness = devices.randomness,
                   .mainScreen = {{0, 0, screen.size().width, screen.size().height}},
                   .animations = screen.animations() ? screen.animations() : devices.animations,
                   .presentations = &hub_} {
  screen.join(hub_);
}

Expected<void> FlowWorld::start(const FlowRequest& request,
                                std::function<void(const Outcome& outcome)> completion) {
  auto root = std::make_shared<platform::UIViewController>(environment_);
  window_ = std::make_unique<platform::UIWindow>(root);
  capture::videoIDCapture(*root, request.front, request.back, request.text, std::move(completion));
  if (root->presentedViewController()) return {};
  return platform::failure("The capture screen could not be built from the program's resources.");
}

}  // namespace corvana::app
