#pragma once

#include <optional>
#include <string>
#include <typeinfo>

#include "platform/foundation/Console.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/foundation/RunLoop.h"
#include "platform/geometry/Geometry.h"
#include "platform/media/AssetWriter.h"
#include "platform/media/CaptureDevice.h"
#include "platform/media/Speech.h"
#include "platform/media/SystemSounds.h"
#include "platform/uikit/Animations.h"

namespace corvana::platform {

class Bundle;
class RandomSource;
class PresentationObserver;

/// The screen's size in points.
struct UIScreen {
  CGRect bounds;
};

/// The system's page with the settings of the application. Main queue. Whoever implements it posts
/// `kApplicationWillEnterForeground` when the user comes back.
class UIApplication {
 public:
  virtual ~UIApplication() = default;
  /// Absent where there is no such page.
  virtual std::optional<std::string> openSettingsURLString() const = 0;
  virtual void open(const std::string& url) = 0;
};

/// What the device offers, handed down to each controller. Fill it by name. Everything in it
/// outlives the controllers, also those that only a block or a timer of the run loop still holds.
struct Environment {
  RunLoop& runLoop;
  Bundle& bundle;  ///< resources of the module
  NotificationCenter& notificationCenter;
  Console& console;
  UIApplication& application;
  MediaDevices& mediaDevices;
  SpeechAuthorization& speechAuthorization;
  SystemSounds& systemSounds;
  RandomSource& randomness;  ///< of hosts that ask for what nobody should foresee
  UIScreen mainScreen;
  Animations animations = {};
  PresentationObserver* presentations = nullptr;  ///< null: nobody watches the stack of screens

  /// The bundle of the software that a class belongs to. There is one here; where each module is
  /// packed by itself, the class tells which.
  Bundle& bundleFor(const std::type_info& /*anchor*/) const { return bundle; }
};

}  // namespace corvana::platform
