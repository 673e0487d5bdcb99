#include "Sight.h"

#include "devices/screen/ViewSearch.h"
#include "platform/foundation/Require.h"

namespace corvana::tests {

using platform::UILabel;
using platform::UIView;

namespace {

template <class View>
View& find(UIView& screen, const std::string& name) {
  auto* view = devices::findView<View>(screen, name);
  platform::require(view != nullptr, "the screen has no \"" + name + "\"");
  return *view;
}

}  // namespace

std::string inWords(const platform::UIColor& color) {
  std::string words = "rgba";
  for (const double part : {color.red, color.green, color.blue, color.alpha})
    words += ' ' + std::to_string(static_cast<int>(part * 1000));
  return words;
}

std::string inWords(const platform::CGRect& rect) {
  std::string words;
  for (const double number : {rect.x, rect.y, rect.width, rect.height})
    words += std::to_string(number) + ' ';
  return words;
}

std::string inWords(const std::optional<std::string>& text, const platform::UIColor& textColor,
                    const platform::UIColor& background) {
  return text ? *text + ", " + inWords(textColor) + " on " + inWords(background) : kHidden;
}

std::string inWords(const platform::NSAttributedString& text) {
  std::string words = text.string;
  for (const auto& run : text.runs) {
    words += " [" + std::to_string(run.location) + '+' + std::to_string(run.length) + ' ' +
             inWords(run.foregroundColor) + ']';
  }
  return words;
}

Sight sightOf(UIView& screen) {
  Sight sight;
  for (const char* name : {"captureLabel", "readingTextCountdownLabel"})
    sight[name] = find<UILabel>(screen, name).text().value_or("");
  for (const std::string name : {"selfieOverlayLabel", "idOverlayLabel"}) {
    const auto& box = find<UIView>(screen, name + "View");
    const auto& label = find<UILabel>(screen, name);
    sight[name] = box.isHidden() ? kHidden
                                 : inWords(label.text().value_or(""), label.textColor(),
                                           box.backgroundColor());
  }
  for (const char* name : {"selfieOverlayImageView", "idFrameImageView"})
    sight[name] = inWords(find<UIView>(screen, name).tintColor());
  for (const char* name : {"selfieOverlayView", "idOverlayView", "readingTextOverlayView",
                           "selfieOverlayBezel1", "selfieOverlayBezel4"}) {
    const auto& view = find<UIView>(screen, name);
    sight[name] = view.isHidden() ? kHidden : std::to_string(view.alpha());
  }
  const auto& silhouette = find<platform::UIImageView>(screen, "idImageView").image();
  sight["idImageView"] = silhouette ? silhouette->name() : "";
  const auto& bar = find<platform::UIProgressView>(screen, "progressView");
  sight["progressView"] = bar.isHidden() ? kHidden : std::to_string(bar.progress());
  const auto& reading = find<UILabel>(screen, "readingTextLabel");
  sight["readingTextLabel"] = inWords(reading.attributedText().value_or(
      platform::NSAttributedString{reading.text().value_or(""), {}}));
  sight["ellipse"] = "";
  for (const auto& layer : screen.layer().sublayers()) {
    for (const auto& inner : layer->sublayers()) {
      if (const auto* shape = dynamic_cast<const platform::CAShapeLayer*>(inner.get()))
        sight["ellipse"] += inWords(shape->pathRect);
    }
  }
  return sight;
}

}  // namespace corvana::tests
