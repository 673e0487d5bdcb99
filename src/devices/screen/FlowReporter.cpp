#include "devices/screen/FlowReporter.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "corvana/CaptureSessionViewController.h"
#include "corvana/IDCapture.h"
#include "corvana/OutletNames.h"
#include "corvana/SelfieCapture.h"
#include "devices/screen/ViewSearch.h"
#include "platform/uikit/Controls.h"
#include "platform/uikit/UIViewController.h"

namespace corvana::devices {
namespace {

using Kind = FlowEvent::Kind;
using platform::UIColor;
using platform::UIView;

std::string toneOf(const UIColor& color, const corvana::Colors& table) {
  namespace colors = platform::colors;
  using corvana::CaptureSessionViewController;
  if (color == table.errorLabelBackgroundColor.value_or(colors::kRed)) return "error";
  if (color ==
      table.successLabelBackgroundColor.value_or(CaptureSessionViewController::greenColor)) {
    return "success";
  }
  if (color == colors::kGray) return "info";
  return color == colors::kWhite ? "neutral" : "other";
}

std::string textOf(UIView& root, const char* name) {
  const auto* label = findView<platform::UILabel>(root, name);
  return label && isInSight(*label) ? label->text().value_or("") : "";
}

const char* nameOf(corvana::PromptType type) {
  static constexpr const char* kNames[] = {"success", "error", "info"};
  return kNames[static_cast<std::size_t>(type)];
}

FlowEvent outlineIn(UIView& root) {
  FlowEvent event{.kind = Kind::outline};
  const std::pair<const char*, const corvana::Colors*> places[] = {
      {outlets::kSelfieOverlayImageView, &corvana::SelfieCapture::colors},
      {outlets::kIdFrameImageView, &corvana::IDCapture::colors}};
  for (const auto& [name, colors] : places) {
    const UIView* view = findView(root, name);
    if (view && isInSight(*view)) event.tone = toneOf(view->tintColor(), *colors);
  }
  return event;
}

FlowEvent silhouetteIn(UIView& root) {
  FlowEvent event{.kind = Kind::silhouette};
  const auto* view = findView<platform::UIImageView>(root, outlets::kIdImageView);
  if (!view || !view->image() || !isInSight(*view)) return event;
  const auto& image = view->image();
  const auto& host = corvana::IDCapture::images;
  if (image == host.frontSilhouetteImage || image->name() == "overlay_portrait_id_front") {
    event.text = "front";
  } else if (image == host.backSilhouetteImage || image->name() == "overlay_landscape_id_back") {
    event.text = "back";
  } else {
    event.text = "other";
  }
  return event;
}

FlowEvent progressIn(UIView& root) {
  FlowEvent event{.kind = Kind::progress};
  const auto* bar = findView<platform::UIProgressView>(root, outlets::kProgressView);
  if (bar && isInSight(*bar)) event.value = bar->progress();
  return event;
}

FlowEvent textEvent(Kind kind, UIView& root, const char* name) {
  return {.kind = kind, .text = textOf(root, name)};
}

FlowEvent alertEvent(const platform::UIAlertController& alert) {
  FlowEvent event{.kind = Kind::alert, .text = alert.title() + ": " + alert.message()};
  for (const auto& action : alert.actions())
    event.choices.push_back(action.title);
  return event;
}

FlowEvent retryEvent(UIView& root) {
  FlowEvent event = textEvent(Kind::retry, root, outlets::kRetryLabel);
  for (const char* name : {outlets::kRetryButton, outlets::kCancelButton}) {
    const auto* button = findView<platform::UIButton>(root, name);
    if (button) event.choices.push_back(button->title());
  }
  return event;
}

void replaceLineBreaks(std::string& text) {
  for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 3)
    text.replace(at, 1, " / ");
}

}  // namespace

const char* nameOf(FlowEvent::Kind kind) {
  static constexpr const char* kNames[] = {"screen",     "caption",  "prompt", "outline",
                                           "silhouette", "progress", "text",   "countdown",
                                           "alert",      "retry",    "sound",  "hint"};
  return kNames[static_cast<std::size_t>(kind)];
}

std::string describe(const FlowEvent& event) {
  std::string line = nameOf(event.kind);
  if (!event.tone.empty()) line += " [" + event.tone + "]";
  if (event.value) {
    const long hundredths = std::lround(*event.value * 100);
    const std::string part = std::to_string(hundredths % 100);
    line += " " + std::to_string(hundredths / 100);
    if (event.kind == Kind::progress) line += (part.size() < 2 ? ".0" : ".") + part;
  }
  if (!event.text.empty()) line += " " + event.text;
  if (event.text.empty() && event.tone.empty() && !event.value) line += " none";
  for (std::size_t i = 0; i < event.choices.size(); ++i)
    line += (i == 0 ? " (" : ", ") + event.choices[i];
  if (!event.choices.empty()) line += ")";
  replaceLineBreaks(line);
  return line;
}

FlowReporter::FlowReporter(platform::RunLoop& loop, Handler handler)
    : ScreenReader(loop, platform::Duration::zero()), handler_(std::move(handler)) {}

void FlowReporter::soundPlayed(platform::SystemSoundID sound) {
  handler_({.kind = Kind::sound, .value = sound});
}

void FlowReporter::hinted(const std::string& words) {
  handler_({.kind = Kind::hint, .text = words});
}

void FlowReporter::prompted(corvana::PromptPlace place, corvana::PromptType type) {
  prompts_[place] = type;
}

void FlowReporter::captureScreenCame() {
  seen_.clear();
  handler_({.kind = Kind::screen, .text = "capture"});
}

void FlowReporter::captureScreenLeft() {
  handler_({.kind = Kind::screen, .text = "closed"});
}

void FlowReporter::alertCame(const platform::UIAlertController& alert) {
  handler_(alertEvent(alert));
}

void FlowReporter::alertLeft() {
  handler_({.kind = Kind::alert});
}

void FlowReporter::retryScreenCame(UIView& root) {
  handler_(retryEvent(root));
}

void FlowReporter::retryScreenLeft() {
  handler_({.kind = Kind::retry});
}

/// The words over the oval or the card, whichever phase is in sight.
FlowEvent FlowReporter::promptIn(UIView& root) const {
  FlowEvent event{.kind = Kind::prompt};
  const std::pair<const char*, corvana::PromptPlace> places[] = {
      {outlets::kSelfieOverlayLabel, corvana::PromptPlace::face},
      {outlets::kIdOverlayLabel, corvana::PromptPlace::card}};
  for (const auto& [name, place] : places) {
    const std::string text = textOf(root, name);
    if (text.empty()) continue;
    event.text = text;
    const auto type = prompts_.find(place);
    event.tone = type == prompts_.end() ? "other" : nameOf(type->second);
  }
  return event;
}

std::vector<FlowEvent> FlowReporter::eventsIn(UIView& root) const {
  return {textEvent(Kind::caption, root, outlets::kCaptureLabel),
          promptIn(root),
          outlineIn(root),
          silhouetteIn(root),
          progressIn(root),
          textEvent(Kind::text, root, outlets::kReadingTextLabel),
          textEvent(Kind::countdown, root, outlets::kReadingTextCountdownLabel)};
}

void FlowReporter::look() {
  UIView* screen = screenInSight();
  if (!screen) return;
  std::vector<FlowEvent> now = eventsIn(*screen);
  for (std::size_t i = 0; i < now.size(); ++i) {
    const FlowEvent nothing{.kind = now[i].kind};
    if (now[i] != (seen_.empty() ? nothing : seen_[i])) handler_(now[i]);
  }
  seen_ = std::move(now);
}

}  // namespace corvana::devices
