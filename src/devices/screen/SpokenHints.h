#pragma once

#include <map>
#include <memory>
#include <string>

#include "devices/screen/FlowReporter.h"
#include "platform/media/SpeechSynthesizer.h"

namespace corvana::devices {

/// Has captions, prompts, retry screens and alerts spoken, for those who look at their card or
/// can't read the screen. The newest words win. Nothing is said while a text is read aloud, since
/// the microphone would hear it. Add it to the `ScreenHub`; main queue.
class SpokenHints final : public ScreenListener {
 public:
  SpokenHints(platform::RunLoop& loop, platform::SpeechSynthesizer& voice);
  ~SpokenHints() override;

  void willPresent(platform::UIViewController& controller) override {
    reporter_.willPresent(controller);
  }
  void didPresent(platform::UIViewController& controller) override {
    reporter_.didPresent(controller);
  }
  void didDismiss(platform::UIViewController& controller) override {
    reporter_.didDismiss(controller);
  }
  /// Has words spoken that are no view's; empty when they are gone.
  void hint(const std::string& words) { reporter_.hinted(words); }
  void viewChanged(platform::UIView& view, const char* property) override {
    reporter_.viewChanged(view, property);
  }

  /// Words that are gone sooner are not spoken: prompts flicker at the edge of what is seen.
  static constexpr platform::Duration kSettling = std::chrono::milliseconds(300);
  /// The same words are not said again within this time.
  static constexpr platform::Duration kRepetition = std::chrono::seconds(5);

 private:
  /// Words at one place of the screen.
  struct Place {
    std::string words;
    bool unsaid = false;
  };

  void happened(const FlowEvent& event);
  void show(Place& place, const std::string& words);
  void speakSoon();
  void speak();
  std::string take(Place& place);

  platform::RunLoop& loop_;
  platform::SpeechSynthesizer& voice_;
  FlowReporter reporter_;
  Place caption_;
  Place prompt_;
  Place hint_;
  Place page_;  ///< a retry screen or an alert, which covers the others
  bool reading_ = false;
  int changes_ = 0;
  std::map<std::string, platform::TimePoint> said_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace corvana::devices
