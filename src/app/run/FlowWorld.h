#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/record/RunRecord.h"
#include "app/run/FlowScreen.h"
#include "corvana/DetectedData.h"
#include "devices/screen/DirectoryBundle.h"
#include "devices/screen/ScreenHub.h"
#include "platform/Environment.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/uikit/UIViewController.h"

namespace corvana::app {

/// What the module is asked to identify: the card captured earlier, and the text to be read.
struct FlowRequest {
  const corvana::DetectedData& front;
  const std::optional<corvana::DetectedData>& back;
  const std::string& text;
};

/// The world around one identification, whoever plays its host: the module's resources, its screen,
/// and the environment that hands everything down. Main queue.
class FlowWorld {
 public:
  /// What differs from one kind of run to another. All of it outlives the world.
  struct Devices {
    platform::Console& console;
    platform::UIApplication& application;
    platform::MediaDevices& mediaDevices;
    platform::SpeechAuthorization& speechAuthorization;
    platform::SystemSounds& systemSounds;
    platform::RandomSource& randomness;
    /// Plays animations where the screen shows only final states; may be null.
    platform::AnimationPlayer* animations = nullptr;
  };

  FlowWorld(platform::RunLoop& loop, FlowScreen& screen, const std::filesystem::path& resources,
            const platform::ControllerFactories& controllers, const Devices& devices);

  platform::NotificationCenter& notificationCenter() { return notificationCenter_; }
  devices::ScreenHub& hub() { return hub_; }
  const platform::Environment& environment() const { return environment_; }

  /// Presents the capture screen. Error: it could not be built from the module's resources, and
  /// `completion` is never called.
  Expected<void> start(const FlowRequest& request,
                       std::function<void(const Outcome& outcome)> completion);
  /// The controller that the user sees, once started.
  platform::UIViewController& topmost() { return window_->topmost(); }
  /// Takes all screens down.
  void close() { window_.reset(); }

 private:
  platform::NotificationCenter notificationCenter_;
  devices::ScreenHub hub_;
  devices::DirectoryBundle bundle_;
  platform::Environment environment_;
  std::unique_ptr<platform::UIWindow> window_;
};

}  // namespace corvana::app
