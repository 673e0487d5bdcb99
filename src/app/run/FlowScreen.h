#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/run/Resources.h"
#include "app/settings/AppearanceTable.h"
#include "devices/screen/DirectoryBundle.h"
#include "devices/screen/ScreenHub.h"
#include "platform/foundation/DrivenLoop.h"
#include "platform/media/CaptureDevice.h"
#include "platform/media/SystemSounds.h"
#include "platform/uikit/Animations.h"

namespace corvana::app {

/// What shows a flow to its user. Outlives the flow; main queue.
class FlowScreen {
 public:
  virtual ~FlowScreen() = default;
  /// In points; does not change.
  virtual platform::CGSize size() const = 0;
  virtual devices::DirectoryBundle::StoryboardMaker makeStoryboards(
      platform::ControllerFactories factories) = 0;
  /// Null when only final states are shown.
  virtual platform::AnimationPlayer* animations() { return nullptr; }
  virtual void join(devices::ScreenHub&) {}
  /// The devices for the flow, such that the screen sees the camera's pictures as well.
  virtual std::unique_ptr<platform::MediaDevices> watch(platform::MediaDevices&) { return nullptr; }
  virtual void play(platform::SystemSoundID) {}
  /// Shows words of the host's own, outside all views; empty: none any more.
  virtual void hint(const std::string& /*words*/) {}
  /// Shows what the host measured, line by line, for who looks for faults; empty: nothing any more.
  virtual void figures(const std::string& /*lines*/) {}
  /// `onClose` is told when the user wants to be rid of the screen; may be null.
  virtual void setOnClose(const std::function<void()>& /*onClose*/) {}
  using PixelUse = std::function<void(int width, int height, const unsigned char* pixels)>;
  /// Gives `use` what can be seen, RGBA in rows without gaps, for the time of the call; not called
  /// when nothing is shown.
  virtual void lookAtPixels(const PixelUse& /*use*/) {}
  /// What can be seen, as a PNG file; false when it can't be written or nothing is to be seen.
  virtual bool savePicture(const std::filesystem::path&) { return false; }
};

enum class ScreenKind { headless, window };

/// A screen and the run loop behind it.
struct FlowStage {
  std::unique_ptr<platform::DrivenLoop> loop;
  std::unique_ptr<FlowScreen> screen;
};

struct WindowWishes {
  std::optional<platform::CGSize> size;  ///< absent: a phone's, as far as there is room
  bool fullScreen = false;
  WindowLooks looks;
};

std::unique_ptr<FlowScreen> makeHeadlessScreen(platform::RunLoop& loop);

/// The event loop behind windows. One at a time in a program.
std::unique_ptr<platform::DrivenLoop> makeWindowLoop();
/// A window, shown with the first screen in it; needs the event loop of windows.
std::unique_ptr<FlowScreen> makeWindowScreen(platform::RunLoop& loop, const WindowWishes& wishes,
                                             const Resources& resources);
/// A window in virtual time, seen only in the pictures that are saved of it; `backdrop` is a
/// picture file that stands in for the camera's.
std::unique_ptr<FlowScreen> makePictureScreen(platform::RunLoop& loop, const WindowWishes& wishes,
                                              const Resources& resources,
                                              const std::filesystem::path& backdrop);
/// There is a display, or a platform was named.
bool windowIsPossible();

}  // namespace corvana::app
