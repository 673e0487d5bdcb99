#include "app/simulate/SimulateWatch.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <utility>

#include "corvana/OutletNames.h"
#include "devices/screen/ViewSearch.h"
#include "platform/uikit/Controls.h"
#include "platform/uikit/UIViewController.h"

namespace corvana::app {
namespace {

using devices::findView;
using devices::isInSight;
using platform::CAShapeLayer;
using platform::UIColor;
using platform::UILabel;
using platform::UIView;

/// By its name, or as "#RRGGBB" (with AA unless opaque).
std::string nameOf(const UIColor& color) {
  namespace colors = platform::colors;
  static const std::pair<UIColor, const char*> kNames[] = {
      {colors::kWhite, "white"}, {colors::kBlack, "black"},   {colors::kGray, "gray"},
      {colors::kRed, "red"},     {colors::kGreen, "green"},   {colors::kYellow, "yellow"},
      {colors::kClear, "clear"}, {colors::kPurple, "purple"},
  };
  for (const auto& [named, name] : kNames) {
    if (named == color) return name;
  }
  const auto byte = [](double part) { return static_cast<int>(std::lround(part * 255)); };
  std::array<char, 40> text{};
  const int length = std::snprintf(text.data(), text.size(), "#%02X%02X%02X%02X", byte(color.red),
                                   byte(color.green), byte(color.blue), byte(color.alpha));
  return {text.data(), static_cast<std::size_t>(color.alpha == 1 ? length - 2 : length)};
}

std::string inColors(const UIColor& text, const UIColor& background) {
  return "[" + nameOf(text) + " on " + nameOf(background) + "] ";
}

template <class View>
const View* seenView(UIView& root, const std::string& name) {
  const auto* view = findView<View>(root, name);
  return view && isInSight(*view) ? view : nullptr;
}

std::string labelText(UIView& root, const char* name) {
  const auto* label = seenView<UILabel>(root, name);
  return label ? label->text().value_or("") : "";
}

/// The words over the oval or the card.
std::string prompt(UIView& root, const char* name) {
  const auto* label = seenView<UILabel>(root, name);
  if (!label) return "";
  return inColors(label->textColor(), label->superview()->backgroundColor()) +
         label->text().value_or("");
}

std::string tint(UIView& root, const char* name) {
  const auto* view = seenView<UIView>(root, name);
  return view ? nameOf(view->tintColor()) : "";
}

std::string picture(UIView& root, const char* name) {
  const auto* view = seenView<platform::UIImageView>(root, name);
  return view && view->image() ? view->image()->name() : "";
}

std::string progress(UIView& root, const char* name) {
  const auto* bar = seenView<platform::UIProgressView>(root, name);
  return bar ? fixedDecimals(bar->progress(), 3) : "";
}

std::string buttonTitle(UIView& root, const char* name) {
  const auto* button = seenView<platform::UIButton>(root, name);
  return button ? button->title() : "";
}

/// Corners of the picture's frame in sight.
std::string bezels(UIView& root, const char* name) {
  int count = 0;
  for (int number = 1; number <= 4; ++number)
    count += seenView<UIView>(root, name + std::to_string(number)) != nullptr;
  return count > 0 ? std::to_string(count) : "";
}

/// The text with its coloured stretches as "[yellow:word]".
std::string marked(const platform::NSAttributedString& text) {
  std::string result;
  std::string color;
  int unit = 0;
  for (const char c : text.string) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0) != 0x80) {
      std::string here;
      for (const auto& run : text.runs) {
        const bool inside = unit >= run.location && unit < run.location + run.length;
        if (inside) here = nameOf(run.foregroundColor);
      }
      if (here != color) {
        if (!color.empty()) result += ']';
        if (!here.empty()) result += "[" + here + ":";
        color = here;
      }
      unit += byte >= 0xF0 ? 2 : 1;
    }
    result += c;
  }
  return color.empty() ? result : result + "]";
}

std::string readingText(UIView& root, const char* name) {
  const auto* label = seenView<UILabel>(root, name);
  if (!label) return "";
  return label->attributedText() ? marked(*label->attributedText()) : label->text().value_or("");
}

std::string describe(const CAShapeLayer& shape) {
  const platform::CGRect& box = shape.pathRect;
  return nameOf(shape.strokeColor) + " " + fixedDecimals(box.x, 0) + "," + fixedDecimals(box.y, 0) +
         " " + fixedDecimals(box.width, 0) + "x" + fixedDecimals(box.height, 0) + ", line " +
         fixedDecimals(shape.lineWidth, 0);
}

/// Shapes of one kind that are drawn over the picture, directly or in a layer of their own.
std::string shapes(platform::CALayer& layer, CAShapeLayer::Path path, int depth = 2) {
  std::string result;
  for (const auto& sublayer : layer.sublayers()) {
    const auto* shape = dynamic_cast<const CAShapeLayer*>(sublayer.get());
    const std::string found = shape ? (shape->path == path ? describe(*shape) : "")
                                    : (depth > 1 ? shapes(*sublayer, path, depth - 1) : "");
    if (!found.empty()) result += (result.empty() ? "" : "; ") + found;
  }
  return result;
}

std::string ellipses(UIView& root, const char*) {
  return shapes(root.layer(), CAShapeLayer::Path::ellipse);
}

std::string outlines(UIView& root, const char*) {
  return shapes(root.layer(), CAShapeLayer::Path::rectangle);
}

/// What is told of the capture screen, in the order of the lines.
struct Reading {
  const char* name;
  std::string (*read)(UIView& root, const char* view);
  const char* view;
};

constexpr Reading kReadings[] = {
    {"caption", labelText, outlets::kCaptureLabel},
    {"prompt", prompt, outlets::kSelfieOverlayLabel},
    {"oval", tint, outlets::kSelfieOverlayImageView},
    {"corners", bezels, "selfieOverlayBezel"},
    {"prompt", prompt, outlets::kIdOverlayLabel},
    {"frame", tint, outlets::kIdFrameImageView},
    {"silhouette", picture, outlets::kIdImageView},
    {"progress", progress, outlets::kProgressView},
    {"face", ellipses, ""},
    {"outlines", outlines, ""},
    {"debug", labelText, outlets::kFaceLivenessScoreLabel},
    {"debug", labelText, outlets::kLeftEyeOpenProbabilityLabel},
    {"debug", labelText, outlets::kRightEyeOpenProbabilityLabel},
    {"debug", labelText, outlets::kMaskDetectionScoreLabel},
    {"debug", labelText, outlets::kRealnessScoresLabel},
    {"debug", labelText, outlets::kTopMatchesLabel},
    {"text", readingText, outlets::kReadingTextLabel},
    {"countdown", labelText, outlets::kReadingTextCountdownLabel},
    {"button", buttonTitle, outlets::kDoneButton},
};

std::string lineOf(const std::string& name, std::string value) {
  for (std::size_t at = 0; (at = value.find('\n', at)) != std::string::npos; at += 3)
    value.replace(at, 1, " / ");
  return name + " " + (value.empty() ? "none" : value);
}

std::string alertLine(const platform::UIAlertController& alert) {
  std::string line = "alert " + alert.title() + ": " + alert.message();
  for (const auto& action : alert.actions())
    line += " (" + action.title + ")";
  return line;
}

}  // namespace

std::string fixedDecimals(double value, int decimals) {
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                 std::chars_format::fixed, decimals);
  return end.ec == std::errc() ? std::string(text.data(), end.ptr) : "?";
}

SimulateWatch::SimulateWatch(platform::RunLoop& loop, Print print, std::vector<Gauge> gauges)
    : ScreenReader(loop, platform::Duration(1)),
      print_(std::move(print)),
      gauges_(std::move(gauges)) {
  for (Gauge& gauge : gauges_)
    gauge.last = gauge.read();
}

void SimulateWatch::captureScreenCame() {
  seen_.assign(std::size(kReadings), "");
  print_("screen capture");
}

void SimulateWatch::captureScreenLeft() {
  print_("screen closed");
}

void SimulateWatch::alertCame(const platform::UIAlertController& alert) {
  print_(alertLine(alert));
}

void SimulateWatch::alertLeft() {
  print_("alert none");
}

void SimulateWatch::retryScreenLeft() {
  print_("screen capture");
}

void SimulateWatch::willFlip(UIView& view, platform::Duration duration) {
  look();
  if (isCovered()) return;
  print_("flip " + view.name() + " " + fixedDecimals(platform::inSeconds(duration), 2) + " s");
}

void SimulateWatch::retryScreenCame(UIView& root) {
  print_("screen retry");
  if (const auto* label = seenView<UILabel>(root, outlets::kRetryLabel)) {
    print_(lineOf("message", inColors(label->textColor(), root.backgroundColor()) +
                                 label->text().value_or("")));
  }
  const std::string image = picture(root, outlets::kRetryImageView);
  print_(lineOf("picture",
                image.empty() ? "" : "[" + tint(root, outlets::kRetryImageView) + "] " + image));
  for (const char* name : {outlets::kRetryButton, outlets::kCancelButton}) {
    const auto* button = seenView<platform::UIButton>(root, name);
    if (!button) continue;
    print_(lineOf("button",
                  inColors(button->titleColor(), button->backgroundColor()) + button->title()));
  }
}

void SimulateWatch::look() {
  if (UIView* screen = screenInSight()) lookAtScreen(*screen);
  for (Gauge& gauge : gauges_) {
    const std::string before = std::exchange(gauge.last, gauge.read());
    if (gauge.last != before) print_(lineOf(gauge.name, gauge.last));
  }
}

void SimulateWatch::lookAtScreen(UIView& root) {
  for (std::size_t i = 0; i < seen_.size(); ++i) {
    const Reading& reading = kReadings[i];
    const std::string before = std::exchange(seen_[i], reading.read(root, reading.view));
    if (seen_[i] != before) print_(lineOf(reading.name, seen_[i]));
  }
}

}  // namespace corvana::app
