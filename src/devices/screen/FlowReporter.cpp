#include "devices/screen/FlowReporter.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "corvana/CaptureSessionViewController.h"
#include "corvana/IDCapture.h"
#include "corvana/SelfieCapture.h"
#include "devices/screen/ViewSearch.h"
#include "platform/uikit/Controls.h"
#include "platform/uikit/UIViewController.h"

namespace devices {
namespace {

using Kind = FlowEvent::Kind;
using platform::UIColor;
using platform::UIView;

constexpr const char* kCaptureScene = "VideoCaptureViewController";
constexpr const char* kRetryScene = "VideoRetryViewController";

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

/// The words over the oval or the card, whichever phase is in sight.
FlowEvent promptIn(UIView& root) {
  FlowEvent event{.kind = Kind::prompt};
  const std::pair<const char*, const corvana::Colors*> places[] = {
      {"selfieOverlayLabel", &corvana::SelfieCapture::colors},
      {"idOverlayLabel", &corvana::IDCapture::colors}};
  for (const auto& [name, colors] : places) {
    const std::string text = textOf(root, name);
    const UIView* label = findView(root, name);
    if (text.empty() || !label->superview()) continue;
    event.text = text;
    event.tone = toneOf(label->superview()->backgroundColor(), *colors);
  }
  return event;
}

FlowEvent outlineIn(UIView& root) {
  FlowEvent event{.kind = Kind::outline};
  const std::pair<const char*, const corvana::Colors*> places[] = {
      {"selfieOverlayImageView", &corvana::SelfieCapture::colors},
      {"idFrameImageView", &corvana::IDCapture::colors}};
  for (const auto& [name, colors] : places) {
    const UIView* view = findView(root, name);
    if (view && isInSight(*view)) event.tone = toneOf(view->tintColor(), *colors);
  }
  return event;
}

FlowEvent silhouetteIn(UIView& root) {
  FlowEvent event{.kind = Kind::silhouette};
  const auto* view = findView<platform::UIImageView>(root, "idImageView");
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
  const auto* bar = findView<platform::UIProgressView>(root, "progressView");
  if (bar && isInSight(*bar)) event.value = bar->progress();
  return event;
}

FlowEvent textEvent(Kind kind, UIView& root, const char* name) {
  return {.kind = kind, .text = textOf(root, name)};
}

std::vector<FlowEvent> eventsIn(UIView& root) {
  return {textEvent(Kind::caption, root, "captureLabel"),
          promptIn(root),
          outlineIn(root),
          silhouetteIn(root),
          progressIn(root),
          textEvent(Kind::text, root, "readingTextLabel"),
          textEvent(Kind::countdown, root, "readingTextCountdownLabel")};
}

FlowEvent alertEvent(const platform::UIAlertController& alert) {
  FlowEvent event{.kind = Kind::alert, .text = alert.title() + ": " + alert.message()};
  for (const auto& action : alert.actions())
    event.choices.push_back(action.title);
  return event;
}

FlowEvent retryEvent(UIView& root) {
  FlowEvent event = textEvent(Kind::retry, root, "label");
  for (const char* name : {"retryButton", "cancelButton"}) {
    const auto* button = findView<platform::UIButton>(root, name);
    if (button) event.choices.push_back(button->title());
  }
  return event;
}

bool isScene(platform::UIViewController& controller, const char* scene) {
  return shownBy(controller).view().name() == scene;
}

void replaceLineBreaks(std::string& text) {
  for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 3)
    text.replace(at, 1, " / ");
}

}  // namespace

const char* nameOf(FlowEvent::Kind kind) {
  static constexpr const char* kNames[] = {"screen",     "caption",  "prompt", "outline",
                                           "silhouette", "progress", "text",   "countdown",
                                           "alert",      "retry",    "sound"};
  return kNames[static_cast<std::size_t>(kind)];
}

std::string describe(const FlowEvent& event) {
  std::string line = nameOf(event.kind);
  if (!event.tone.empty()) line += " [" + event.tone + "]";
  if (event.value) {
    const int hundredths = static_cast<int>(*event.value * 100 + 0.5);
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
    : loop_(loop), handler_(std::move(handler)) {}

void FlowReporter::soundPlayed(platform::SystemSoundID sound) {
  handler_({.kind = Kind::sound, .value = sound});
}

void FlowReporter::willPresent(platform::UIViewController& controller) {
  if (isScene(controller, kCaptureScene)) {
    screen_ = &shownBy(controller).view();
    seen_.clear();
    covered_ = false;
    handler_({.kind = Kind::screen, .text = "capture"});
    lookSoon();
  } else if (isScene(controller, kRetryScene)) {
    covered_ = true;
  }
}

void FlowReporter::didPresent(platform::UIViewController& controller) {
  if (const auto* alert = dynamic_cast<platform::UIAlertController*>(&controller)) {
    handler_(alertEvent(*alert));
  } else if (isScene(controller, kRetryScene)) {
    handler_(retryEvent(controller.view()));
  }
}

void FlowReporter::didDismiss(platform::UIViewController& controller) {
  if (dynamic_cast<platform::UIAlertController*>(&controller)) {
    handler_({.kind = Kind::alert});
  } else if (isScene(controller, kRetryScene)) {
    handler_({.kind = Kind::retry});
    covered_ = false;
    lookSoon();
  } else if (isScene(controller, kCaptureScene)) {
    screen_ = nullptr;
    handler_({.kind = Kind::screen, .text = "closed"});
  }
}

void FlowReporter::viewChanged(UIView&, const char*) {
  lookSoon();
}

void FlowReporter::lookSoon() {
  if (std::exchange(lookPending_, true)) return;
  loop_.mainQueue().async([this, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) look();
  });
}

void FlowReporter::look() {
  lookPending_ = false;
  if (!screen_ || covered_) return;
  std::vector<FlowEvent> now = eventsIn(*screen_);
  for (std::size_t i = 0; i < now.size(); ++i) {
    const FlowEvent nothing{.kind = now[i].kind};
    if (now[i] != (seen_.empty() ? nothing : seen_[i])) handler_(now[i]);
  }
  seen_ = std::move(now);
}

}  // namespace devices
