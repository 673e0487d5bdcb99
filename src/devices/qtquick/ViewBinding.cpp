#include "devices/qtquick/ViewBinding.h"

#include <QMetaMethod>
#include <initializer_list>

#include "devices/qtquick/Conversions.h"

namespace devices {

using platform::NSAttributedString;
using platform::UIColor;
using platform::UIFont;

namespace {

constexpr const char* kHidden = "hidden";
constexpr const char* kAlpha = "alpha";
constexpr const char* kBackgroundColor = "backgroundColor";
constexpr const char* kTintColor = "tintColor";
constexpr const char* kText = "text";
constexpr const char* kTextColor = "textColor";
constexpr const char* kTextFormat = "textFormat";
constexpr const char* kAnnounced = "announced";
constexpr const char* kFontFamily = "fontFamily";
constexpr const char* kFontSize = "fontSize";
constexpr const char* kImageSource = "imageSource";
constexpr const char* kFlipSource = "flipSource";
constexpr const char* kFlip = "flip";
constexpr const char* kTitle = "title";
constexpr const char* kTitleColor = "titleColor";
constexpr const char* kEnabled = "enabled";
constexpr const char* kProgress = "progress";

// Values of Text.textFormat. Plain unless words are marked: a text is never read as markup.
constexpr int kPlainText = 0;
constexpr int kStyledText = 4;

UIColor colorOf(const QQuickItem& item, const char* property) {
  return fromQt(item.property(property).value<QColor>());
}

void setColor(QQuickItem& item, const char* property, const UIColor& color) {
  item.setProperty(property, toQt(color));
}

QString styled(const NSAttributedString& text) {
  const QString plain = QString::fromStdString(text.string);
  const auto escaped = [&plain](qsizetype from, qsizetype length) {
    return plain.mid(from, length).toHtmlEscaped().replace('\n', QStringLiteral("<br>"));
  };
  QString result;
  qsizetype at = 0;
  for (const auto& run : text.runs) {
    if (run.location < at || run.location + run.length > plain.size()) continue;
    result += escaped(at, run.location - at);
    result += QStringLiteral("<font color=\"%1\">%2</font>")
                  .arg(toQt(run.foregroundColor).name(), escaped(run.location, run.length));
    at = run.location + run.length;
  }
  return result + escaped(at, plain.size() - at);
}

std::string lacksProperties(const QQuickItem& item, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    if (item.metaObject()->indexOfProperty(name) < 0) {
      return std::string("a property \"") + name + "\"";
    }
  }
  return {};
}

}  // namespace

UIFont ViewBinding::font() const {
  return {text(kFontFamily).toStdString(), item_.property(kFontSize).toDouble()};
}

void ViewBinding::setFont(const UIFont& font) {
  item_.setProperty(kFontFamily, QString::fromStdString(font.family));
  item_.setProperty(kFontSize, font.pointSize);
}

void ViewBinding::takeOver() {
  view_.setHidden(item_.property(kHidden).toBool());
  view_.setAlpha(item_.property(kAlpha).toDouble());
  view_.setBackgroundColor(colorOf(item_, kBackgroundColor));
  view_.setTintColor(colorOf(item_, kTintColor));
}

void ViewBinding::apply(std::string_view property) {
  if (property == kHidden) item_.setProperty(kHidden, view_.isHidden());
  if (property == kAlpha) tools_.animator.move(item_, kAlpha, view_.alpha(), tools_.duration);
  if (property == kBackgroundColor) setColor(item_, kBackgroundColor, view_.backgroundColor());
  if (property == kTintColor) setColor(item_, kTintColor, view_.tintColor());
}

void ViewBinding::reportFrame(const QQuickItem& root) {
  const QRectF own(0, 0, item_.width(), item_.height());
  view_.setFrame(fromQt(item_.mapRectToItem(&root, own)));
}

void LabelBinding::takeOver() {
  ViewBinding::takeOver();
  label_.setTextColor(colorOf(item(), kTextColor));
  label_.setFont(font());
  if (!text(kText).isEmpty()) label_.setText(text(kText).toStdString());
}

void LabelBinding::apply(std::string_view property) {
  ViewBinding::apply(property);
  if (property == kText || property == "attributedText") {
    const auto& marked = label_.attributedText();
    item().setProperty(kTextFormat, marked ? kStyledText : kPlainText);
    item().setProperty(
        kText, marked ? styled(*marked) : QString::fromStdString(label_.text().value_or("")));
    if (item().property(kAnnounced).toBool() && label_.text()) tools().announce(item());
  }
  if (property == kTextColor) setColor(item(), kTextColor, label_.textColor());
  if (property == "font") setFont(label_.font());
}

void ImageViewBinding::apply(std::string_view property) {
  ViewBinding::apply(property);
  if (property != "image") return;
  item().setProperty(kImageSource, tools().images.address(imageView_.image()));
}

void ImageViewBinding::flip(platform::Duration duration) {
  item().setProperty(kFlipSource, item().property(kImageSource));
  item().setProperty(kFlip, 0.0);
  tools().animator.move(item(), kFlip, 1, duration);
}

void ProgressViewBinding::apply(std::string_view property) {
  ViewBinding::apply(property);
  if (property == kProgress) {
    item().setProperty(kProgress, static_cast<double>(progressView_.progress()));
  }
}

ButtonBinding::ButtonBinding(QQuickItem& item, platform::UIButton& button,
                             const BindingTools& tools)
    : ViewBinding(item, button, tools), button_(button) {
  connect(&item, SIGNAL(clicked()), this, SLOT(touch()));
}

ButtonBinding::~ButtonBinding() {
  if (platform::UILabel* label = button_.titleLabel()) label->setObserver(nullptr);
}

void ButtonBinding::takeOver() {
  ViewBinding::takeOver();
  button_.setTitle(text(kTitle).toStdString());
  button_.setTitleColor(colorOf(item(), kTitleColor));
  button_.setEnabled(item().isEnabled());
  if (platform::UILabel* label = button_.titleLabel()) {
    label->setFont(font());
    label->setObserver(this);
  }
}

void ButtonBinding::apply(std::string_view property) {
  ViewBinding::apply(property);
  if (property == kTitle) item().setProperty(kTitle, QString::fromStdString(button_.title()));
  if (property == kTitleColor) setColor(item(), kTitleColor, button_.titleColor());
  if (property == kEnabled) item().setEnabled(button_.isEnabled());
}

void ButtonBinding::viewChanged(platform::UIView&, const char* property) {
  if (std::string_view(property) == "font") setFont(button_.titleLabel()->font());
}

void ButtonBinding::touch() {
  button_.touchUpInside();
}

std::string lacksForView(const QQuickItem& item) {
  return lacksProperties(item, {kHidden, kAlpha, kBackgroundColor, kTintColor});
}

std::string lacksForLabel(const QQuickItem& item) {
  return lacksProperties(item, {kHidden, kAlpha, kBackgroundColor, kTintColor, kText, kTextColor,
                                kTextFormat, kFontFamily, kFontSize});
}

std::string lacksForImageView(const QQuickItem& item) {
  return lacksProperties(
      item, {kHidden, kAlpha, kBackgroundColor, kTintColor, kImageSource, kFlipSource, kFlip});
}

std::string lacksForButton(const QQuickItem& item) {
  if (item.metaObject()->indexOfSignal("clicked()") < 0) return "a signal \"clicked\"";
  return lacksProperties(item, {kHidden, kAlpha, kBackgroundColor, kTintColor, kTitle, kTitleColor,
                                kFontFamily, kFontSize});
}

std::string lacksForProgressView(const QQuickItem& item) {
  return lacksProperties(item, {kHidden, kAlpha, kBackgroundColor, kTintColor, kProgress});
}

}  // namespace devices
