#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "devices/screen/ScreenHub.h"
#include "platform/foundation/RunLoop.h"
#include "platform/uikit/UIView.h"

namespace app {

/// Prints a line for each thing that changes on the screens of the module, with its colours, and on
/// the gauges beside them. Changes of one instant are seen together; nothing is told of a screen
/// that another covers. Add it to the `ScreenHub` and make it the environment's animation player.
/// Main queue.
class SimulateWatch final : public devices::ScreenListener, public platform::AnimationPlayer {
 public:
  using Print = std::function<void(const std::string& line)>;
  /// Something beside the screen that has a value at all times, as whether the microphone runs.
  struct Gauge {
    std::string name;
    std::function<std::string()> read;
    std::string last = {};
  };

  SimulateWatch(platform::RunLoop& loop, Print print, std::vector<Gauge> gauges);

  /// Looks when all that is due at this instant has been done.
  void lookSoon();

  void willPresent(platform::UIViewController& controller) override;
  void didPresent(platform::UIViewController& controller) override;
  void didDismiss(platform::UIViewController& controller) override;
  void viewChanged(platform::UIView&, const char*) override { lookSoon(); }
  /// What is about to fade has been seen.
  void willAnimate(platform::Duration) override { look(); }
  void willFlip(platform::UIView& view, platform::Duration duration) override;

 private:
  void look();
  void lookAtScreen();
  void printRetryScreen(platform::UIView& root);

  platform::RunLoop& loop_;
  Print print_;
  std::vector<Gauge> gauges_;
  platform::UIView* screen_ = nullptr;
  bool covered_ = false;
  bool lookPending_ = false;
  std::vector<std::string> seen_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

/// Fixed decimals in any locale.
std::string fixedDecimals(double value, int decimals);

}  // namespace app
