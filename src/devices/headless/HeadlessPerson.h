#pragma once

#include <memory>
#include <optional>

#include "devices/screen/ScreenHub.h"
#include "platform/foundation/RunLoop.h"

namespace corvana::platform {
class UIAlertController;
}

namespace corvana::devices {

/// What the person before a headless screen does. Alerts get their first button, always.
struct PersonHabits {
  enum class OnRetry { retry, cancel };

  OnRetry onRetry = OnRetry::cancel;
  /// How many retry screens are answered with retry; those after them are cancelled.
  int maxRetries = 3;
  /// How long after the Done button has come in sight it is touched; absent: never.
  std::optional<platform::Duration> doneAfter = {};
  /// How long after the first screen has appeared the Done button is touched, or later when it
  /// comes in sight; goes before `doneAfter`.
  std::optional<platform::Duration> doneAt = {};
  /// How long after a screen has appeared it is answered.
  platform::Duration reactionTime = std::chrono::seconds(1);
};

/// Answers the screens of a run without a window by touching their buttons, as a user would. Add it
/// to the `ScreenHub`; it must outlive the run loop's work. Main queue.
class HeadlessPerson final : public ScreenListener {
 public:
  HeadlessPerson(platform::RunLoop& loop, PersonHabits habits) : loop_(loop), habits_(habits) {}

  int retries() const { return retries_; }

  void didPresent(platform::UIViewController& controller) override;
  void viewChanged(platform::UIView& view, const char* property) override;

 private:
  void answerAlert(platform::UIAlertController& alert);
  void answerRetryScreen(platform::UIViewController& screen);
  std::optional<platform::Duration> delayOfDone() const;
  void touchDone(const std::weak_ptr<platform::UIView>& button, int sighting);
  void after(platform::Duration delay, platform::Block block);

  platform::RunLoop& loop_;
  PersonHabits habits_;
  int retries_ = 0;
  std::optional<platform::TimePoint> appeared_;  ///< the first screen
  bool seesDone_ = false;
  int sighting_ = 0;
};

}  // namespace corvana::devices
