#include <QQuickItem>
#include <cmath>
#include <optional>

#include "ScreenWorld.h"
#include "app/settings/AppearanceTable.h"

namespace corvana::tests {
namespace {

/// A window, how large its letters are, and their language; "longer" is English with words that
/// are longer by half, to find texts that would be cut in some language to come.
struct Room {
  platform::CGSize size;
  double textScale;
  const char* language;
};

void PrintTo(const Room& room, std::ostream* out) {
  *out << room.size.width << "x" << room.size.height << " letters " << room.textScale << " "
       << room.language;
}

/// Sets the texts of a language.
app::WindowLooks speak(const std::string& language) {
  const std::filesystem::path folder = std::filesystem::path(STORYBOARDS) / "languages";
  const bool longer = language == "longer";
  app::WindowLooks looks;
  const auto file = folder / ((longer ? "en" : language) + ".json");
  const auto applied = app::applyAppearance(file, looks);
  EXPECT_TRUE(applied) << applied.error().sentence;
  if (!longer) return looks;
  for (const app::TextEntry& entry : app::translatableTexts(looks)) {
    std::string& text = *entry.text;
    text = "[" + text + " " + text.substr(0, text.size() / 2) + "]";
  }
  return looks;
}

/// Facts of a layout that hold in every room.
class Layout : public ScreenWorld, public testing::WithParamInterface<Room> {
 protected:
  void enterRoom() {
    const Room& room = GetParam();
    const app::WindowLooks looks = speak(room.language);
    open(room.size);
    screen->settings().textScale = room.textScale;
    screen->settings().rightToLeft = looks.rightToLeft;
    emit screen->settings().changed();
    enter();
  }

  QRectF window() const { return {0, 0, GetParam().size.width, GetParam().size.height}; }

  /// Of a label the words, of anything else all of it.
  static QRectF seen(const QQuickItem& thing) {
    QRectF all = place(thing);
    const QVariant height = thing.property("contentHeight");
    const QVariant width = thing.property("contentWidth");
    if (!height.isValid()) return all;
    const QPointF center = all.center();
    all.setSize({width.toDouble(), height.toDouble()});
    all.moveCenter(center);
    return all;
  }

  void expectFits(const char* id) {
    const QQuickItem& thing = item(id);
    if (!thing.isVisible()) return;
    EXPECT_TRUE(window().adjusted(-1, -1, 1, 1).contains(seen(thing))) << id << " is cut";
    EXPECT_FALSE(thing.property("truncated").toBool()) << id;
    const QVariant words = thing.property("contentHeight");
    if (words.isValid()) {
      EXPECT_LE(words.toDouble(), thing.height() + 1) << id << " is cut";
    }
  }

  void expectApart(const std::vector<const char*>& ids) {
    for (std::size_t i = 0; i < ids.size(); ++i) {
      expectFits(ids[i]);
      for (std::size_t j = 0; j < i; ++j) {
        const QQuickItem& one = item(ids[i]);
        const QQuickItem& other = item(ids[j]);
        if (!one.isVisible() || !other.isVisible()) continue;
        const QRectF both = seen(one) & seen(other);
        EXPECT_TRUE(both.width() < 1 || both.height() < 1) << ids[i] << " lies on " << ids[j];
      }
    }
  }

  void expectTouchable(const char* id) {
    const QRectF button = place(id);
    EXPECT_GE(button.width(), 44) << id;
    EXPECT_GE(button.height(), 44) << id;
  }

  /// Of the capture screen in any phase.
  void expectCaptureScreen() {
    expectApart({"closeButton", "captureLabel", "selfieOverlayLabelView", "idOverlayLabelView",
                 "doneButton", "readingTextCountdownLabel"});
    expectApart({"selfieOverlayLabel"});
    expectApart({"idOverlayLabel"});
    expectApart({"selfieOverlayImageView", "overlayTopView"});
    expectApart({"idFrameImageView", "overlayTopView", "progressView"});
    expectTouchable("closeButton");
  }
};

TEST_P(Layout, NothingIsCutAndNothingOverlaps) {
  text = "I open this account for myself, of my own free will, and nobody told me to do so";
  SelfieCapture::layout.labelPosition = corvana::LabelPosition::bottom;
  IDCapture::layout.labelPosition = corvana::LabelPosition::top;
  enterRoom();
  expectCaptureScreen();
  // The oval keeps a phone's proportions and stands in the middle.
  const QRectF oval = place("selfieOverlayImageView");
  EXPECT_NEAR(oval.width() / oval.height(), 0.75, 0.01);
  EXPECT_NEAR(oval.center().x(), window().center().x(), 1);
  EXPECT_GT(oval.height(), window().height() * 0.3);
  for (const Face::Value& state :
       {Face::Value(Face::MoveCloser{}), Face::Value(Face::MoveAway{}),
        Face::Value(Face::CapturingFace{}), Face::Value(Face::MultipleFacesDetected{}),
        Face::Value(Face::AlignFace{})}) {
    selfie(state);
    expectCaptureScreen();
    EXPECT_LT((place("selfieOverlayLabelView") & oval).height(), oval.height() / 3)
        << "the prompt lies on the face";
  }

  passSelfie();
  world.advance(0.5);
  for (const ID::Value& state :
       {ID::Value(ID::TooMuchGlare{}), ID::Value(ID::MoveCloser{}), ID::Value(ID::MoveAway{}),
        ID::Value(ID::ClassifiedDocument{back}), ID::Value(ID::AlignRectangle{})}) {
    card(state);
    expectCaptureScreen();
  }
  const QRectF frame = place("idFrameImageView");
  EXPECT_NEAR(frame.width() / frame.height(), 85.6 / 54, 0.02);
  // The live face is watched to the end: no card before the eyes.
  EXPECT_FALSE(frame.contains(oval.center()));
  card(ID::DetectedBox{});
  expectCaptureScreen();
  showSide(front);
  expectCaptureScreen();
  world.advance(2);
  passBack();
  world.advance(0.5);
  expectCaptureScreen();
  expectTouchable("doneButton");
  // The text may be longer than its page, which then scrolls; the page itself lies free.
  const QRectF page = place(*item("readingTextLabel").parentItem()->parentItem());
  EXPECT_GE(page.height(), item("readingTextLabel").property("font").value<QFont>().pixelSize());
  EXPECT_FALSE(page.intersects(place("doneButton")));
  EXPECT_FALSE(page.intersects(place("readingTextCountdownLabel")));
}

TEST_P(Layout, TheRetryScreenIsWhole) {
  enterRoom();
  card(ID::TimedOut{});
  world.advance(1);
  expectApart({"imageView", "label", "retryButton", "cancelButton"});
  expectTouchable("retryButton");
  expectTouchable("cancelButton");
}

INSTANTIATE_TEST_SUITE_P(Rooms, Layout,
                         testing::Values(Room{{360, 640}, 1, "en"}, Room{{360, 640}, 1.6, "fr"},
                                         Room{{360, 640}, 1, "longer"}, Room{{540, 960}, 1, "ar"},
                                         Room{{768, 1024}, 1.3, "de"},
                                         Room{{1280, 720}, 1, "longer"},
                                         Room{{640, 360}, 1.3, "ar"}, Room{{1920, 1080}, 1.6, "es"},
                                         Room{{3840, 2160}, 1, "en"}));

/// Relative luminance of WCAG 2.
double luminance(const platform::UIColor& color) {
  const auto linear = [](double c) {
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrast(const platform::UIColor& a, const platform::UIColor& b) {
  const double high = std::max(luminance(a), luminance(b));
  return (high + 0.05) / (std::min(luminance(a), luminance(b)) + 0.05);
}

class Contrast : public ScreenWorld {};

TEST_F(Contrast, LettersStandOutByTheDefaultTables) {
  constexpr double kLeast = 4.5;
  open();
  enter();
  const auto expectReadable = [&](const char* label, const char* box) {
    EXPECT_GE(contrast(world.label(label).textColor(), world.view(box).backgroundColor()), kLeast)
        << label << " " << world.text(label);
  };
  for (const Face::Value& state :
       {Face::Value(Face::MoveCloser{}), Face::Value(Face::CapturingFace{})}) {
    selfie(state);
    expectReadable("selfieOverlayLabel", "selfieOverlayLabelView");
  }
  passSelfie();
  card(ID::TooMuchGlare{});
  expectReadable("idOverlayLabel", "idOverlayLabelView");
  showSide(front);
  expectReadable("idOverlayLabel", "idOverlayLabelView");
  world.advance(3);
  card(ID::TimedOut{});
  world.advance(1);
  for (const char* name : {"retryButton", "cancelButton"}) {
    EXPECT_GE(contrast(world.button(name).titleColor(), world.view(name).backgroundColor()),
              kLeast);
  }
  EXPECT_GE(contrast(world.label("label").textColor(), world.topmost().view().backgroundColor()),
            kLeast);
}

}  // namespace
}  // namespace corvana::tests
