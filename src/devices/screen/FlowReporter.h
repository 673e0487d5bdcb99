#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "devices/screen/ScreenHub.h"
#include "platform/foundation/RunLoop.h"
#include "platform/media/SystemSounds.h"

namespace devices {

/// One change of what the user sees or hears.
struct FlowEvent {
  enum class Kind {
    screen,      ///< text "capture" when it has come up, "closed" when it has gone
    caption,     ///< text
    prompt,      ///< text and tone; text empty when it has gone
    outline,     ///< tone of the oval's or the card frame's tint
    silhouette,  ///< text "front", "back", "other" or empty
    progress,    ///< value 0 to 1; absent when the bar has gone
    text,        ///< text to read aloud; empty when it has gone
    countdown,   ///< text "M:SS"; empty when it has gone
    alert,       ///< text and choices; text empty when it has gone
    retry,       ///< text and choices; text empty when it has gone
    sound,       ///< value: number of the system sound
  };

  Kind kind = Kind::screen;
  std::string text = {};
  /// "success", "error", "info", "neutral" (white) or "other".
  std::string tone = {};
  std::optional<double> value = {};
  std::vector<std::string> choices = {};  ///< titles of buttons

  bool operator==(const FlowEvent&) const = default;
};

const char* nameOf(FlowEvent::Kind kind);
/// One line, as `prompt [error] Move closer`; line breaks become " / ". Does not depend on the
/// locale.
std::string describe(const FlowEvent& event);

/// Turns what the capture screen, its retry screen and its alerts show into events, each only when
/// it changes. Changes of one instant are seen together, as by a user; nothing is told of a screen
/// that another covers. Add it to the `ScreenHub`; main queue.
class FlowReporter final : public ScreenListener {
 public:
  using Handler = std::function<void(const FlowEvent&)>;

  FlowReporter(platform::RunLoop& loop, Handler handler);

  /// Reports a sound; called by whoever plays it.
  void soundPlayed(platform::SystemSoundID sound);

  void willPresent(platform::UIViewController& controller) override;
  void didPresent(platform::UIViewController& controller) override;
  void didDismiss(platform::UIViewController& controller) override;
  void viewChanged(platform::UIView& view, const char* property) override;

 private:
  void lookSoon();
  void look();

  platform::RunLoop& loop_;
  Handler handler_;
  platform::UIView* screen_ = nullptr;
  bool covered_ = false;
  bool lookPending_ = false;
  std::vector<FlowEvent> seen_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace devices
