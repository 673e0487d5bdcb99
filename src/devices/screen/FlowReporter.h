#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "corvana/Decision.h"
#include "devices/screen/ScreenReader.h"
#include "platform/foundation/RunLoop.h"
#include "platform/media/SystemSounds.h"

namespace corvana::devices {

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
    hint,        ///< text that the host itself shows; empty when it has gone
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
class FlowReporter final : public ScreenReader {
 public:
  using Handler = std::function<void(const FlowEvent&)>;

  FlowReporter(platform::RunLoop& loop, Handler handler);

  /// Reports a sound; called by whoever plays it.
  void soundPlayed(platform::SystemSoundID sound);
  /// Reports words that are no view's; called by whoever shows them.
  void hinted(const std::string& words);

  /// Says of what type the prompt over the oval or the card is, before it is shown.
  void prompted(corvana::PromptPlace place, corvana::PromptType type);

 private:
  void captureScreenCame() override;
  void captureScreenLeft() override;
  void alertCame(const platform::UIAlertController& alert) override;
  void alertLeft() override;
  void retryScreenCame(platform::UIView& root) override;
  void retryScreenLeft() override;
  void look() override;

  std::vector<FlowEvent> eventsIn(platform::UIView& root) const;
  FlowEvent promptIn(platform::UIView& root) const;

  Handler handler_;
  std::map<corvana::PromptPlace, corvana::PromptType> prompts_;
  std::vector<FlowEvent> seen_;
};

}  // namespace corvana::devices
