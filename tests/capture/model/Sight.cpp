#include "Sight.h"

#include <sstream>
#include <utility>

#include "devices/screen/ViewSearch.h"
#include "platform/foundation/Require.h"

namespace tests {
namespace {

using platform::CAShapeLayer;
using platform::UIColor;

template <class View>
View& find(platform::UIView& screen, const std::string& name) {
  auto* view = devices::findView<View>(screen, name);
  platform::require(view != nullptr, "the screen has no \"" + name + "\"");
  return *view;
}

Prompt promptOf(platform::UIView& screen, const std::string& label) {
  auto& box = find<platform::UIView>(screen, label + "View");
  auto& text = find<platform::UILabel>(screen, label);
  return {box.isHidden(), text.text(), text.textColor(), box.backgroundColor()};
}

/// Rectangles lie on the screen itself, the ellipse in a layer of its own.
void readShapes(platform::CALayer& screen, Sight& sight) {
  for (const auto& layer : screen.sublayers()) {
    sight.outlines += dynamic_cast<CAShapeLayer*>(layer.get()) != nullptr;
    for (const auto& inner : layer->sublayers()) {
      const auto* shape = dynamic_cast<CAShapeLayer*>(inner.get());
      if (!shape) continue;
      platform::require(!sight.ellipse, "there is more than one ellipse");
      sight.ellipse = shape->pathRect;
    }
  }
}

std::string print(const std::string& text) {
  return text;
}
std::string print(const std::optional<std::string>& text) {
  return text.value_or("(none)");
}
std::string print(bool value) {
  return value ? "yes" : "no";
}
template <class Number>
requires std::is_arithmetic_v<Number> std::string print(Number value) {
  return std::to_string(value);
}
std::string print(const UIColor& color) {
  std::ostringstream text;
  text << "rgba " << color.red << ' ' << color.green << ' ' << color.blue << ' ' << color.alpha;
  return text.str();
}
std::string print(const std::optional<platform::CGRect>& rect) {
  if (!rect) return "(none)";
  std::ostringstream text;
  text << rect->x << ' ' << rect->y << ' ' << rect->width << ' ' << rect->height;
  return text.str();
}
std::string print(const std::vector<platform::NSAttributedString::Run>& runs) {
  std::string text;
  for (const auto& run : runs)
    text += "[" + std::to_string(run.location) + "+" + std::to_string(run.length) + "]";
  return text;
}
std::string print(const Prompt& prompt) {
  return (prompt.hidden ? "hidden " : "shown ") + print(prompt.text) + ", " +
         print(prompt.textColor) + " on " + print(prompt.background);
}

}  // namespace

Sight sightOf(platform::UIView& screen) {
  using platform::UIImageView;
  using platform::UILabel;
  using platform::UIView;
  Sight sight;
  const auto text = [&](const char* name) { return find<UILabel>(screen, name).text(); };
  const auto hidden = [&](const char* name) { return find<UIView>(screen, name).isHidden(); };
  const auto alpha = [&](const char* name) { return find<UIView>(screen, name).alpha(); };
  const auto tint = [&](const char* name) { return find<UIView>(screen, name).tintColor(); };
  sight.caption = text("captureLabel");
  sight.face = promptOf(screen, "selfieOverlayLabel");
  sight.oval = tint("selfieOverlayImageView");
  sight.card = promptOf(screen, "idOverlayLabel");
  sight.frame = tint("idFrameImageView");
  const auto& silhouette = find<UIImageView>(screen, "idImageView").image();
  sight.silhouette = silhouette ? silhouette->name() : "";
  sight.progress = find<platform::UIProgressView>(screen, "progressView").progress();
  sight.progressHidden = hidden("progressView");
  sight.bezelsHidden = hidden("selfieOverlayBezel1") && hidden("selfieOverlayBezel4");
  sight.selfieHidden = hidden("selfieOverlayView");
  sight.selfieAlpha = alpha("selfieOverlayView");
  sight.cardAlpha = alpha("idOverlayView");
  sight.readingAlpha = alpha("readingTextOverlayView");
  sight.reading = text("readingTextLabel");
  const auto& attributed = find<UILabel>(screen, "readingTextLabel").attributedText();
  if (attributed) sight.highlights = attributed->runs;
  sight.countdown = text("readingTextCountdownLabel");
  sight.selfieDebugHidden = hidden("selfieDebugStackView");
  sight.cardDebugHidden = hidden("idDebugStackView");
  sight.liveness = text("faceLivenessScoreLabel");
  sight.realness = text("realnessScoresLabel");
  sight.topMatches = text("topMatchesLabel");
  readShapes(screen.layer(), sight);
  return sight;
}

std::string difference(const Sight& expected, const Sight& seen) {
  std::string lines;
  const auto compare = [&](const char* what, auto field) {
    if (expected.*field == seen.*field) return;
    lines += std::string("  ") + what + ": `" + print(expected.*field) + "` but `" +
             print(seen.*field) + "`\n";
  };
  compare("caption", &Sight::caption);
  compare("face prompt", &Sight::face);
  compare("oval", &Sight::oval);
  compare("card prompt", &Sight::card);
  compare("frame", &Sight::frame);
  compare("silhouette", &Sight::silhouette);
  compare("progress", &Sight::progress);
  compare("progress hidden", &Sight::progressHidden);
  compare("bezels hidden", &Sight::bezelsHidden);
  compare("selfie overlay hidden", &Sight::selfieHidden);
  compare("selfie overlay alpha", &Sight::selfieAlpha);
  compare("card overlay alpha", &Sight::cardAlpha);
  compare("reading overlay alpha", &Sight::readingAlpha);
  compare("text", &Sight::reading);
  compare("highlights", &Sight::highlights);
  compare("countdown", &Sight::countdown);
  compare("selfie debug hidden", &Sight::selfieDebugHidden);
  compare("card debug hidden", &Sight::cardDebugHidden);
  compare("liveness", &Sight::liveness);
  compare("realness", &Sight::realness);
  compare("top matches", &Sight::topMatches);
  compare("ellipse", &Sight::ellipse);
  compare("outlines", &Sight::outlines);
  return lines;
}

}  // namespace tests
