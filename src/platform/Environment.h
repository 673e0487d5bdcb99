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

namespace corvana {
class DecisionObserver;
class HostFactories;
}  // namespace corvana

namespace platform {

class AnimationPlayer;
class Bundle;
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

/// The world, handed down to each controller. Everything in it outlives the controllers, also those
/// that only a block or a timer of the run loop still holds.
struct Environment {
  RunLoop& runLoop;
  Bundle& bundle;  ///< resources of the module
  NotificationCenter& notificationCenter;
  Console& console;
  UIApplication& application;
  MediaDevices& mediaDevices;
  SpeechAuthorization& speechAuthorization;
  SystemSounds& systemSounds;
  corvana::HostFactories& host;
  UIScreen mainScreen;
  AnimationPlayer* animations = nullptr;           ///< null: only final states are shown
  PresentationObserver* presentations = nullptr;   ///< null: nobody watches the stack of screens
  corvana::DecisionObserver* decisions = nullptr;  ///< null: no record of the run is kept
  /// The bundle of the software that a class belongs to. There is one here; where each module is
  /// packed by itself, the class tells which.
  Bundle& bundleFor(const std::type_info& /*anchor*/) const { return bundle; }
  /// Kept by `UIView::animate`: when the animation ends whose values are being set.
  std::optional<TimePoint> animationEnd = {};
};

}  // namespace platform
