#pragma once

#include <functional>
#include <string>
#include <vector>

#include "devices/screen/ScreenReader.h"
#include "platform/uikit/Animations.h"
#include "platform/uikit/UIView.h"

namespace corvana::app {

/// Prints a line for each thing that changes on the screens of the module, with its colours, and on
/// the gauges beside them. Changes of one instant are seen together; nothing is told of a screen
/// that another covers. Add it to the `ScreenHub` and make it the environment's animation player.
/// Main queue.
class SimulateWatch final : public devices::ScreenReader, public platform::AnimationPlayer {
 public:
  using Print = std::function<void(const std::string& line)>;
  /// Something beside the screen that has a value at all times, as whether the microphone runs.
  struct Gauge {
    std::string name;
    std::function<std::string()> read;
    std::string last = {};
  };

  SimulateWatch(platform::RunLoop& loop, Print print, std::vector<Gauge> gauges);

  /// What is about to fade has been seen.
  void willAnimate(platform::Duration) override { look(); }
  void willFlip(platform::UIView& view, platform::Duration duration) override;

 private:
  void captureScreenCame() override;
  void captureScreenLeft() override;
  void alertCame(const platform::UIAlertController& alert) override;
  void alertLeft() override;
  void retryScreenCame(platform::UIView& root) override;
  void retryScreenLeft() override;
  void look() override;

  void lookAtScreen(platform::UIView& root);

  Print print_;
  std::vector<Gauge> gauges_;
  std::vector<std::string> seen_;
};

/// Fixed decimals in any locale.
std::string fixedDecimals(double value, int decimals);

}  // namespace corvana::app
