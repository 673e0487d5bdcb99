#include <QAccessible>
#include <QTextBlock>
#include <QTextDocument>
#include <QtTest>
#include <algorithm>
#include <cstdlib>
#include <map>
#include <tuple>

#include "ScreenWorld.h"
#include "corvana/Notifications.h"
#include "devices/qtquick/PreviewCamera.h"

namespace corvana::tests {
namespace {

using platform::colors::kRed;

class Screen : public ScreenWorld {
 protected:
  void expectCanceled() {
    ASSERT_EQ(results.size(), 1U);
    ASSERT_FALSE(results[0]);
    EXPECT_EQ(results[0].error().cause(), platform::FaultCause::canceled);
  }

  /// The words of a label as they are drawn, those in yellow within brackets.
  std::string drawn(const std::string& label) {
    QTextDocument document;
    document.setHtml(item(label).property("text").toString());
    QString result;
    for (auto line = document.begin(); line != document.end(); line = line.next()) {
      for (auto part = line.begin(); !part.atEnd(); ++part) {
        const bool isMarked = part.fragment().charFormat().foreground().color() == Qt::yellow;
        const QString words = part.fragment().text().replace(QChar::LineSeparator, '\n');
        result += isMarked ? "[" + words + "]" : words;
      }
    }
    return result.toStdString();
  }

  /// Pixels of a colour in a part of the window; blending may be off by one.
  int count(const QColor& color, const QRectF& part) {
    const QImage picture = screen->picture().copy(part.toAlignedRect());
    const auto isNear = [](int a, int b) { return std::abs(a - b) <= 1; };
    int found = 0;
    for (int i = 0; i < picture.width() * picture.height(); ++i) {
      const QColor pixel = picture.pixelColor(i % picture.width(), i / picture.width());
      found += isNear(pixel.red(), color.red()) && isNear(pixel.green(), color.green()) &&
               isNear(pixel.blue(), color.blue());
    }
    return found;
  }
};

TEST_F(Screen, ShowsAWholeIdentificationAndTakesItsTouches) {
  open();
  enter();
  EXPECT_EQ(item("captureLabel").property("text"), "Take a Selfie");
  EXPECT_EQ(world.host.recorder()->setup.selfieOverlayFrame,
            world.view("selfieOverlayImageView").frame());
  selfie(Face::MoveCloser{});
  EXPECT_EQ(item("selfieOverlayLabel").property("text"), "Move closer");
  EXPECT_EQ(item("selfieOverlayImageView").property("tintColor").value<QColor>(),
            QColor::fromRgbF(float(kRed.red), float(kRed.green), float(kRed.blue)));
  EXPECT_FALSE(item("doneButton").isVisible());

  passSelfie();
  world.advance(0.5);
  EXPECT_FALSE(item("selfieOverlayView").isVisible());
  EXPECT_EQ(item("idOverlayView").opacity(), 1);
  card(ID::DetectedBox{});
  world.advance(0.5);
  EXPECT_NEAR(item("progressView").property("progress").toDouble(), 1.0 / 3, 1e-6);
  showSide(front);
  world.advance(0.9);
  const double flip = item("idImageView").property("flip").toDouble();
  EXPECT_TRUE(flip > 0 && flip < 1) << "the silhouette is turned over before the eyes: " << flip;
  world.advance(1.2);
  EXPECT_EQ(item("captureLabel").property("text"), "Show the Back of Your ID");
  passBack();
  hear(text);
  click("doneButton");
  expectAccepted();
  EXPECT_TRUE(screen->window().contentItem()->childItems().size() == 1) << "but for the flash";
}

TEST_F(Screen, ShowsAHintOfTheHostAboveAllViewsUntilItIsTakenBack) {
  open();
  enter();
  passSelfie();
  std::vector<std::string> said;
  screen->onAnnounce = [&](const std::string& words) { said.push_back(words); };
  const int before = count(QColor("#bf4300"), {0, 0, 360, 640});
  screen->hint("Take your fingers off the print");
  EXPECT_GT(count(QColor("#bf4300"), {0, 0, 360, 640}), before + 1000);
  EXPECT_EQ(said, std::vector<std::string>{"Take your fingers off the print"});
  click("closeButton");
  expectCanceled();
  screen->hint("");
  EXPECT_EQ(screen->window().contentItem()->childItems().size(), 1) << "but for the flash";
}

TEST_F(Screen, ShowsFiguresOfTheHostInPlaceOfThoseBeforeAndAnnouncesNone) {
  open();
  enter();
  std::vector<std::string> said;
  screen->onAnnounce = [&](const std::string& words) { said.push_back(words); };
  const QImage without = screen->picture();
  screen->figures("relief: value 0.031, threshold 0.02, seen\nblink: value 0.97, threshold 0.91");
  const QImage both = screen->picture();
  EXPECT_NE(both, without);
  screen->figures("relief: value 0.031");
  EXPECT_NE(screen->picture(), both);
  screen->figures("");
  EXPECT_EQ(screen->picture(), without);
  EXPECT_TRUE(said.empty());
}

TEST_F(Screen, CloseCancelsInEveryPhaseByTouchAndByKeys) {
  const std::pair<const char*, std::function<void()>> phases[] = {
      {"selfie", [] {}},
      {"front", [&] { passSelfie(); }},
      {"card turns", [&] { passSelfie(), showSide(front), world.advance(0.9); }},
      {"back", [&] { passSelfie(), passFront(); }},
      {"reading", [&] { reachReading(); }}};
  open();
  for (const auto& [phase, reach] : phases) {
    for (const bool byKey : {false, true}) {
      SCOPED_TRACE(phase);
      results.clear();
      enter();
      reach();
      if (byKey) {
        QTest::keyClick(&screen->window(), Qt::Key_Escape);
        world.advance(1);
      } else {
        click("closeButton");
      }
      expectCanceled();
    }
  }
}

TEST_F(Screen, RetryAndCancelAnswerAndNothingBelowDoes) {
  open();
  enter();
  selfie(Face::TimedOut{});
  world.advance(1);
  const QRectF close(8, 8, 40, 40);
  QTest::mouseClick(&screen->window(), Qt::LeftButton, {}, close.center().toPoint());
  world.advance(1);
  ASSERT_EQ(world.topmostScene(), "VideoRetryViewController") << "a covered button was touched";
  click("retryButton");
  EXPECT_EQ(world.recorder().count("retry"), 1);
  reachReading();
  hear(text);
  click("doneButton");
  expectAccepted();
  results.clear();
  enter();
  selfie(Face::TimedOut{});
  world.advance(1);
  // The first button has the focus; the second is one key away.
  QTest::keyClick(&screen->window(), Qt::Key_Tab);
  QTest::keyClick(&screen->window(), Qt::Key_Return);
  world.advance(1);
  expectCanceled();
}

TEST_F(Screen, AlertsAreAnswered) {
  world.mediaDevices.microphoneStatus = platform::AVAuthorizationStatus::denied;
  open();
  enter();
  ASSERT_TRUE(world.alert());
  click(alertButton());
  EXPECT_EQ(world.application.opened.size(), 1u);
  EXPECT_FALSE(world.alert());
}

TEST_F(Screen, SpeaksToScreenReaders) {
  world.mediaDevices.microphoneStatus = platform::AVAuthorizationStatus::denied;
  open();
  std::vector<std::string> said;
  screen->onAnnounce = [&](const std::string& words) { said.push_back(words); };
  enter();
  const auto roleOf = [](QQuickItem& thing) {
    auto* heard = QAccessible::queryAccessibleInterface(&thing);
    return std::pair(heard->role(), heard->text(QAccessible::Name).toStdString());
  };
  EXPECT_EQ(roleOf(alertButton()), std::pair(QAccessible::Button, std::string("Settings")));
  EXPECT_EQ(said, (std::vector<std::string>{"Take a Selfie",
                                            "Error. Microphone Permission Not Granted"}));
  click(alertButton());
  EXPECT_EQ(roleOf(item("closeButton")), std::pair(QAccessible::Button, std::string("Close")));
  EXPECT_EQ(roleOf(item("captureLabel")),
            std::pair(QAccessible::Heading, std::string("Take a Selfie")));
  said.clear();
  selfie(Face::MoveCloser{});
  EXPECT_EQ(said, std::vector<std::string>{"Move closer"});
  auto* close = QAccessible::queryAccessibleInterface(&item("closeButton"));
  close->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  world.advance(1);
  expectCanceled();
}

TEST_F(Screen, MarksTheWordsHeardAndNeverReadsATextAsMarkup) {
  VideoCapture::options.isDebugMode = true;
  text = "Seven <b>grey</b> herons & more";
  open();
  enter();
  EXPECT_EQ(item("readingTextLabel").property("text").toString().toStdString(), text);
  EXPECT_EQ(item("readingTextLabel").property("textFormat").toInt(), 0);
  reachReading();
  hear("seven herons");
  EXPECT_EQ(item("readingTextLabel").property("text").toString().toStdString(),
            "<font color=\"#ffff00\">Seven</font> &lt;b&gt;grey&lt;/b&gt; "
            "<font color=\"#ffff00\">herons</font> &amp; more");
}

TEST_F(Screen, MarksEachRunInWhateverOrderTheyCome) {
  text = "Seven 🐦𝔊rey herons & <b>";  // the third and fourth letters here take two units each
  open();
  enter();
  reachReading();
  using Runs = std::vector<platform::NSAttributedString::Run>;
  const auto yellow = [](int location, int length) {
    return Runs::value_type{location, length, platform::colors::kYellow};
  };
  const std::tuple<const char*, Runs, const char*> cases[] = {
      {"none", {}, "Seven 🐦𝔊rey herons & <b>"},
      {"last first", {yellow(14, 6), yellow(0, 5)}, "[Seven] 🐦𝔊rey [herons] & <b>"},
      {"touching", {yellow(10, 3), yellow(8, 2)}, "Seven 🐦[𝔊rey] herons & <b>"},
      {"overlapping", {yellow(14, 6), yellow(8, 9)}, "Seven 🐦[𝔊rey herons] & <b>"},
      {"markup", {yellow(23, 3), yellow(21, 1)}, "Seven 🐦𝔊rey herons [&] [<b>]"},
      {"outside", {yellow(21, 99), yellow(-3, 8), yellow(50, 2)}, "[Seven] 🐦𝔊rey herons [& <b>]"},
      {"empty", {yellow(3, 0), yellow(9, -4)}, "Seven 🐦𝔊rey herons & <b>"},
      {"through a letter", {yellow(7, 2)}, "Seven 🐦[𝔊]rey herons & <b>"}};
  for (const auto& [name, runs, seen] : cases) {
    world.label("readingTextLabel").setAttributedText({text, runs});
    EXPECT_EQ(drawn("readingTextLabel"), seen) << name;
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&item("readingTextLabel"))
                  ->text(QAccessible::Name)
                  .toStdString(),
              text);
  }
}

TEST_F(Screen, WordsHeardOutOfOrderAreYellowInThePicture) {
  VideoCapture::options.isDebugMode = true;
  text = "mmmm wwww";
  open();
  enter();
  reachReading();
  QRectF left = place("readingTextLabel");
  left.setWidth(left.width() / 2);
  const QRectF right = left.translated(left.width(), 0);
  const auto marks = [&] {
    return std::pair(count(Qt::yellow, left) > 0, count(Qt::yellow, right) > 0);
  };
  EXPECT_EQ(marks(), std::pair(false, false));
  hear("wwww");
  EXPECT_EQ(marks(), std::pair(false, true));
  hear("wwww mmmm");
  EXPECT_EQ(marks(), std::pair(true, true));
}

TEST_F(Screen, TheBarMovesOnlyWhenItIsAskedToAndMovementIsWanted) {
  open();
  const auto progress = [&] { return item("progressView").property("progress").toDouble(); };
  for (const bool animated : {true, false}) {
    screen->settings().animated = animated;
    enter();
    passSelfie();
    card(ID::DetectedBox{});
    EXPECT_TRUE(item("progressView").isVisible());
    world.advance(0.1);
    if (animated) {
      EXPECT_GT(progress(), 0.01);
      EXPECT_LT(progress(), 0.32);
    }
    world.advance(animated ? 0.3 : 0);
    EXPECT_NEAR(progress(), 1.0 / 3, 1e-6);
    card(ID::DetectingBox{});
    EXPECT_EQ(progress(), 0) << "asked not to move";
    world.root->dismiss(false);
    world.advance(1000);
  }
}

TEST_F(Screen, OnlyWhatIsRaisedLiesOverThePreview) {
  open();
  enter();
  passSelfie();
  screen->feed()->push(std::make_shared<platform::PixelBuffer>(2, 2, platform::PixelFormat::rgb24,
                                                               std::vector<std::uint8_t>(12, 200)));
  const QColor camera(200, 200, 200);
  const auto isCovered = [&](const char* overlay) {
    const QRect all = place(overlay).toAlignedRect();
    return count(camera, all) == all.width() * all.height();
  };
  const auto lower = [&](const char* overlay) { world.view(overlay).layer().setZPosition(0); };
  const auto overlays = {"overlayTopView", "idOverlayView"};
  for (const char* overlay : overlays)
    EXPECT_FALSE(isCovered(overlay)) << overlay << " is raised when the camera runs";
  std::ranges::for_each(overlays, lower);
  for (const char* overlay : overlays) {
    EXPECT_TRUE(isCovered(overlay)) << overlay << " is older than the preview";
    world.view(overlay).layer().setZPosition(0.5);
    EXPECT_FALSE(isCovered(overlay)) << overlay;
    lower(overlay);
  }
}

TEST_F(Screen, ANewFlowDoesNotBeginWithThePictureOfTheLast) {
  open();
  enter();
  const auto red = std::make_shared<platform::PixelBuffer>(1, 1, platform::PixelFormat::rgb24,
                                                           std::vector<std::uint8_t>{255, 0, 0});
  screen->feed()->push(red);
  EXPECT_EQ(pixel(180, 260), QColor(Qt::red));
  click("closeButton");
  enter();
  EXPECT_EQ(pixel(180, 260), QColor(Qt::black));
}

TEST_F(Screen, PreviewIsMirroredAndOutlinesLieOverIt) {
  open({400, 400});
  enter();
  // Red on the left of the camera's picture, blue on the right.
  std::vector<std::uint8_t> bytes;
  for (int i = 0; i < 100 * 100; ++i) {
    const bool left = i % 100 < 50;
    bytes.insert(bytes.end(), {std::uint8_t(left ? 255 : 0), 0, std::uint8_t(left ? 0 : 255)});
  }
  screen->feed()->push(std::make_shared<platform::PixelBuffer>(
      100, 100, platform::PixelFormat::rgb24, std::move(bytes)));
  // Inside the oval, where no shade lies.
  EXPECT_EQ(pixel(190, 150), QColor(Qt::blue));
  EXPECT_EQ(pixel(210, 150), QColor(Qt::red));
  world.recorder().reportLiveFace({450, 350, 100, 200}, {1000, 1000});
  world.advance(0);
  EXPECT_EQ(pixel(200, 140), QColor(Qt::green)) << "top of the ellipse around the face";
}

TEST_F(Screen, ReplaysShowTheSamePictures) {
  std::vector<QImage> pictures;
  for (int i = 0; i < 2; ++i) {
    if (i == 0) open();
    enter();
    passSelfie();
    showSide(front);
    world.advance(0.75);
    pictures.push_back(screen->picture());
    world.root->dismiss(false);
    world.advance(1000);
  }
  EXPECT_FALSE(pictures[0].isNull());
  EXPECT_EQ(pictures[0], pictures[1]);
}

/// What an edit of a storyboard's file must lead to.
struct BrokenScene {
  const char* file;
  const char* from;
  const char* to;
  const char* complaint;
};

TEST_F(Screen, AStoryboardThatLacksSomethingStopsTheProgramNamingIt) {
  GTEST_FLAG_SET(death_test_style, "fast");
  const char* capture = "VideoCaptureViewController.qml";
  for (const BrokenScene& scene :
       {BrokenScene{capture, "id: topMatchesLabel;", "", "no outlet \"topMatchesLabel\""},
        BrokenScene{capture, "Bar {\n            id: progressView",
                    "View {\n            id: progressView",
                    "right kind \"progressView\": it lacks a property \"progress\""},
        BrokenScene{capture, "id: idLabelBelowConstraint", "", "idLabelBelowConstraint"},
        BrokenScene{capture, "action: \"doneReadingText\"", "",
                    "no control for the action \"doneReadingText\""},
        BrokenScene{capture, "action: \"doneReadingText\"", "action: \"done\"",
                    "no control for the action \"doneReadingText\""},
        BrokenScene{capture, "property Item preview: cameraPreview", "", "\"preview\""},
        BrokenScene{capture, "Preview {", "Preview { nonsense: 1", "nonsense"}}) {
    const EditedStoryboards edited(scene.file, scene.from, scene.to);
    EXPECT_DEATH(
        {
          open({360, 640}, edited.folder());
          enter();
        },
        scene.complaint);
  }
}

TEST_F(Screen, AControllerOfAnotherKindIsNotShownAndStopsNothing) {
  for (auto& [scene, make] : world.factories) {
    make = [](auto& environment) {
      return std::make_shared<platform::UIViewController>(environment);
    };
  }
  open();
  enter();
  EXPECT_EQ(&world.topmost(), world.root.get());
  EXPECT_TRUE(results.empty());
}

TEST_F(Screen, WantsToBeClosedOnlyByTheProgram) {
  open();
  EXPECT_FALSE(screen->window().isVisible()) << "there is nothing to be seen yet";
  enter();
  int wishes = 0;
  screen->onClose = [&] { ++wishes; };
  screen->window().close();
  EXPECT_EQ(wishes, 1);
  EXPECT_TRUE(screen->window().isVisible());
}

}  // namespace
}  // namespace corvana::tests
