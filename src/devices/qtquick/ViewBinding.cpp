#include "devices/qtquick/ViewBinding.h"

#include <QMetaMethod>
#include <algorithm>
#include <initializer_list>
#include <vector>

#include "devices/qtquick/Conversions.h"

namespace corvana::devices {

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
constexpr const char* kWords = "words";
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

/// How long a bar moves to its new value; common toolkits take as long.
constexpr platform::Duration kProgressMovement = std::chrono::milliseconds(250);

// Values of Text.textFormat. Plain unless words are marked: a text is never read as markup.
constexpr int kPlainText = 0;
constexpr int kStyledText = 4;

UIColor colorOf(const QQuickItem& item, const char* property) {
  return fromQt(item.property(property).value<QColor>());
}

void setColor(QQuickItem& item, const char* property, const UIColor& color) {
  item.setProperty(property, toQt(color));
}

/// The colour of each UTF-16 unit, invalid where no run lies. Runs come in any order and may touch
/// or overlap; the later one wins. What lies outside of the text falls away.
std::vector<QColor> colorsOf(const NSAttributedString& text, const QString& plain) {
  std::vector<QColor> colors(static_cast<std::size_t>(plain.size()));
  for (const auto& run : text.runs) {
    const auto from = std::max<qsizetype>(0, run.location);
    const auto end = std::min(plain.size(), qsizetype{run.location} + run.length);
    for (qsizetype at = from; at < end; ++at)
      colors[static_cast<std::size_t>(at)] = toQt(run.foregroundColor);
  }
  // The two units of a letter outside the basic plane must not be torn apart.
  for (qsizetype at = 1; at < plain.size(); ++at) {
    const auto unit = static_cast<std::size_t>(at);
    if (plain[at].isLowSurrogate()) colors[unit] = colors[unit - 1];
  }
  return colors;
}

QString styled(const NSAttributedString& text) {
  const QString plain = QString::fromStdString(text.string);
  const std::vector<QColor> colors = colorsOf(text, plain);
  QString result;
  for (auto from = colors.begin(); from != colors.end();) {
    const auto end = std::find_if(from, colors.end(), [&](const auto& c) { return c != *from; });
    const QString words = plain.mid(from - colors.begin(), end - from)
                              .toHtmlEscaped()
                              .replace('\n', QStringLiteral("<br>"));
    result += from->isValid()
                  ? QStringLiteral("<font color=\"%1\">%2</font>").arg(from->name(), words)
                  : words;
    from = end;
  }
  return result;
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
  view_.layer().setZPosition(item_.z());
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
    const QString words = QString::fromStdString(label_.text().value_or(""));
    item().setProperty(kTextFormat, marked ? kStyledText : kPlainText);
    item().setProperty(kText, marked ? styled(*marked) : words);
    item().setProperty(kWords, words);
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
  if (property != kProgress) return;
  tools().animator.move(
      item(), kProgress, progressView_.progress(),
      progressView_.isProgressAnimated() ? kProgressMovement : platform::Duration::zero());
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

}  // namespace corvana::devices
