#include <algorithm>
#include <cmath>
#include <numbers>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "TestCards.h"
#include "engine/document/outline/CardChoice.h"
#include "engine/document/outline/CardFinder.h"
#include "engine/document/outline/CardLook.h"
#include "engine/document/outline/CardWarp.h"
#include "engine/document/outline/FacesInStill.h"

namespace corvana::tests {
namespace {

using engine::CardVerdict;
using tests::Held;

double worstCorner(const engine::Quad& outline, const std::array<cv::Point2f, 4>& truth) {
  double worst = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    worst = std::max(
        worst, std::hypot(outline.corners[i].x - truth[i].x, outline.corners[i].y - truth[i].y));
  }
  return worst;
}

TEST(CardFinder, FindsTheCornersOfCardsInAHand) {
  for (const int design : {0, 1}) {
    const auto card = tests::drawCard(design, tests::holder(0), "person_b.jpg");
    for (const Held& held : {Held{},
                             {.x = 330, .y = 960, .width = 560, .roll = -8, .taper = 0.05},
                             {.x = 350, .y = 1020, .width = 620, .roll = 6, .background = 1},
                             {.width = 490, .roll = 12, .taper = 0.04, .background = 2},
                             {.y = 980, .width = 620, .background = 1, .blur = 1.6, .noise = 5},
                             {.x = 300, .y = 930, .width = 480, .roll = -12, .noise = 6}}) {
      for (const cv::Mat& side : {card.front, card.back}) {
        const auto shown = tests::hold(side, held);
        const auto sighting = engine::findCard(*shown.picture, kGuide);
        SCOPED_TRACE(testing::Message() << design << ", " << held.width << ", " << held.roll);
        ASSERT_EQ(sighting.verdict, CardVerdict::found);
        EXPECT_LT(worstCorner(*sighting.outline, shown.corners), 3.0);
      }
    }
  }
}

TEST(CardFinder, SaysWhatIsWrongWithTheCardsPlace) {
  const auto card = tests::drawCard(0, tests::holder(1), "person_a.jpg");
  for (const auto& [held, verdict] : std::initializer_list<std::pair<Held, CardVerdict>>{
           {{.width = 300}, CardVerdict::moveCloser},
           {{.width = 450, .roll = 22}, CardVerdict::alignRectangle},
           {{.y = 700, .width = 500, .background = 2}, CardVerdict::alignRectangle},
           {{.width = 717}, CardVerdict::moveAway},
           {{.width = 800}, CardVerdict::moveAway},
           {{.width = 950}, CardVerdict::moveAway},
           {{.x = 500, .width = 560}, CardVerdict::alignRectangle},
           {{.y = 1150, .width = 600}, CardVerdict::alignRectangle}}) {
    EXPECT_EQ(engine::findCard(*tests::hold(card.front, held).picture, kGuide).verdict, verdict)
        << "x " << held.x << ", width " << held.width << ", roll " << held.roll;
  }
}

TEST(CardFinder, TakesNothingPrintedOnACardThatIsTooNearForTheCard) {
  auto card = tests::drawCard(0, tests::holder(1), "person_a.jpg");
  // A frame of a card's shape, not as clear as a card.
  const cv::Size size = card.front.size();
  const cv::Rect frame(size.width / 5, size.height / 5, size.width * 3 / 5, size.height * 3 / 5);
  cv::rectangle(card.front, frame, cv::Scalar(40, 60, 90, 255), 3);
  const cv::Rect gap(frame.x + frame.width / 4, frame.y - 12, frame.width / 3, frame.height + 24);
  cv::Mat(card.front, gap).setTo(cv::Scalar(205, 215, 225, 255));
  for (const auto& [width, verdict] : {std::pair(600.0, CardVerdict::found),
                                       {850.0, CardVerdict::moveAway},
                                       {950.0, CardVerdict::moveAway}}) {
    const auto shown = tests::hold(card.front, {.width = width});
    EXPECT_EQ(engine::findCard(*shown.picture, kGuide).verdict, verdict) << width;
  }
}

/// A page's proportions, and those of visas of 120 by 80 millimetres between it and a card.
constexpr double kLongerAspects[] = {1.42, 1.5};

TEST(CardFinder, FindsLargerSizesOfDocumentsAndTellsTheirPlace) {
  const auto card = tests::drawCard(0, tests::holder(0), "person_b.jpg");
  for (const double aspect : kLongerAspects) {
    const cv::Mat page = tests::lengthened(card.front, aspect);
    for (const Held& held :
         {Held{}, {.roll = 6, .background = 1}, {.width = 520, .taper = 0.05, .background = 2}}) {
      const auto shown = tests::hold(page, held);
      const auto sighting = engine::findCard(*shown.picture, kGuide);
      SCOPED_TRACE(testing::Message() << aspect << ", " << held.width << ", " << held.roll);
      ASSERT_EQ(sighting.verdict, CardVerdict::found);
      EXPECT_LT(worstCorner(*sighting.outline, shown.corners), 3.0);
    }
    const Held cutBelow{.y = 1280 - 0.42 * 560 / aspect, .width = 560, .background = 2};
    EXPECT_EQ(engine::findCard(*tests::hold(page, cutBelow).picture, kGuide).verdict,
              CardVerdict::alignRectangle)
        << aspect;
  }
}

TEST(CardFinder, SeesNoCardWhereThereIsNone) {
  const cv::Mat nothing(1080, 1712, CV_8UC4, cv::Scalar::all(0));
  for (int background = 0; background < 4; ++background) {
    const auto shown = tests::hold(nothing, {.background = background});
    for (const double y : {200.0, 500.0, 804.0}) {
      const auto sighting = engine::findCard(*shown.picture, {50, y, 620, 391});
      EXPECT_EQ(sighting.verdict, CardVerdict::none) << "background " << background << ", y " << y;
    }
    EXPECT_EQ(engine::findCard(*shown.picture, {}).verdict, CardVerdict::none);
  }
}

TEST(CardWarp, FindsAPartOfTheCardInThePicture) {
  const engine::Quad upright{{{{100, 200}, {600, 200}, {600, 515}, {100, 515}}}};
  const auto part = engine::boundsInPicture({499.5, 314.5, 100, 63}, upright);
  EXPECT_NEAR(part.x, 350, 1e-3);
  EXPECT_NEAR(part.y, 357.5, 1e-3);
  EXPECT_NEAR(part.width, 50, 1e-3);
  EXPECT_NEAR(part.height, 31.5, 1e-3);
  // Turned by a quarter, the card's left edge lies on top.
  const engine::Quad turned{{{{515, 100}, {515, 600}, {200, 600}, {200, 100}}}};
  const auto left = engine::boundsInPicture({-0.5, -0.5, 100, 630}, turned);
  EXPECT_NEAR(left.y, 100, 1e-3);
  EXPECT_NEAR(left.width, 315, 1e-3);
  EXPECT_NEAR(left.height, 50, 1e-3);
}

/// An outline of these proportions, a tilt about one of its axes included.
engine::Quad outlineOf(double width, double height) {
  return {{{{100, 100}, {100 + width, 100}, {100 + width, 100 + height}, {100, 100 + height}}}};
}

TEST(CardWarp, GivesACardAndAPageTheirOwnShape) {
  const platform::PixelBuffer picture(1400, 1100, platform::PixelFormat::rgb24,
                                      std::vector<std::uint8_t>(std::size_t{1400} * 1100 * 3));
  const double tilt = std::cos(15 * std::numbers::pi / 180);
  for (const auto& [across, down] : {std::pair(1.0, 1.0), {tilt, 1.0}, {1.0, tilt}}) {
    const auto heightOf = [&](double width, double height) {
      const auto outline = outlineOf(8 * width * across, 8 * height * down);
      return engine::straightened(picture, outline)->height();
    };
    EXPECT_EQ(heightOf(85.6, 53.98), 630);
    EXPECT_EQ(heightOf(105, 74), 704);
    EXPECT_EQ(heightOf(125, 88), 704);
  }
  const auto whole = engine::boundsInPicture({-0.5, -0.5, 1000, 704}, outlineOf(1000, 704));
  EXPECT_NEAR(whole.height, 704, 1e-3);
}

TEST(CardWarp, LeavesThePictureAsItIs) {
  constexpr int kWide = 2200;
  constexpr int kHigh = 1400;
  std::vector<std::uint8_t> stripes(std::size_t{kWide} * kHigh * 3);
  for (std::size_t i = 0; i < stripes.size(); ++i)
    stripes[i] = i / 12 % 2 == 0 ? 40 : 220;
  const platform::PixelBuffer picture(kWide, kHigh, platform::PixelFormat::rgb24, stripes);
  for (const double width : {900.0, 2000.0}) {
    engine::straightened(picture, outlineOf(width, width / engine::kCardAspect));
    EXPECT_TRUE(std::ranges::equal(picture.bytes(), stripes)) << width;
  }
}

TEST(CardLook, TakesTheWholeOfEachSizeForThatOfWhichAnOutlineHoldsAPart) {
  for (const double aspect : {1.586, 1.42}) {
    const auto whole = outlineOf(900, 900 / aspect);
    const auto notLow = outlineOf(900, 0.9 * 900 / aspect);
    const auto notRight = outlineOf(0.9 * 900, 900 / aspect);
    for (const auto& part : {notLow, notRight}) {
      EXPECT_TRUE(engine::completes(whole, part)) << aspect;
      EXPECT_FALSE(engine::completes(part, whole)) << aspect;
    }
    EXPECT_FALSE(engine::completes(outlineOf(900, 1.2 * 900 / aspect), whole)) << aspect;
    EXPECT_FALSE(engine::completes(outlineOf(920, 920 / aspect), whole)) << "the same, " << aspect;
    EXPECT_FALSE(engine::completes(outlineOf(910, 910 / 1.49), whole)) << "half a page, " << aspect;
  }
}

/// A look at what certainly is a card unless it has no face, with so many lines of print, of 300
/// pixels of the picture each.
engine::CardLook lookOf(const engine::Quad& outline, int lines, double face = 0.9) {
  engine::CardLook look;
  look.outline = outline;
  look.faceScore = face;
  const double length = 300 * engine::kCardWidth / outline.width();
  for (int i = 0; i < lines; ++i) {
    look.lines.emplace_back();
    look.lines.back().box = {20, 20.0 + 30 * i, length, 20};
  }
  return look;
}

/// With a line as wide as a zone's.
engine::CardLook withZone(engine::CardLook look) {
  look.lines.emplace_back();
  look.lines.back().box = {50, 500, 800, 20};
  return look;
}

TEST(FacesInStill, FindsTheHolderOfASmallCardAtAnyTurn) {
  auto faces = engine::FaceDetector::load(ENGINE_RESOURCES "/face_detection_short_range.tflite");
  ASSERT_TRUE(faces) << faces.error().sentence;
  const cv::Rect place(900, 300, 480, 303);
  cv::Mat card;
  cv::cvtColor(drawCard(0, tests::holder(0), "person_a.jpg").front, card, cv::COLOR_RGBA2RGB);
  cv::Mat still(1200, 1600, CV_8UC3, cv::Scalar(150, 130, 100));
  cv::resize(card, still(place), place.size(), 0, 0, cv::INTER_AREA);
  const auto holder = faces->detect(*engine::pixelBufferFrom(still(place)));
  ASSERT_FALSE(holder.empty());
  cv::Point2d expected(place.x + holder[0].box.midX(), place.y + holder[0].box.midY());
  for (int turns = 0; turns < 4; ++turns) {
    const auto found = engine::facesInStill(*engine::pixelBufferFrom(still), *faces);
    ASSERT_FALSE(found.empty()) << turns;
    EXPECT_NEAR(found[0].midX(), expected.x, 12) << turns;
    EXPECT_NEAR(found[0].midY(), expected.y, 12) << turns;
    expected = {still.rows - expected.y, expected.x};
    cv::Mat turned;
    cv::rotate(still, turned, cv::ROTATE_90_CLOCKWISE);
    still = turned;
  }
}

TEST(CardChoice, TakesACardInItsShapeForWhatIsPartOfItOrMore) {
  const auto card = outlineOf(900, 900 / engine::kCardAspect);
  const auto part = outlineOf(700, 900 / engine::kCardAspect);
  const auto more = outlineOf(900, 900 / 1.35);
  const auto tilted = outlineOf(900, 900 / 1.61);
  const engine::Quad beside{{{{1200, 100}, {2100, 100}, {2100, 667}, {1200, 667}}}};
  struct Case {
    const char* what;
    engine::CardLook seen;
    engine::CardLook other;
    bool isTaken;
  };
  const Case cases[] = {
      {"a part", lookOf(part, 8), lookOf(card, 8), true},
      {"ground beside it", lookOf(more, 8), lookOf(card, 8), true},
      {"a line not found again", lookOf(part, 11), lookOf(card, 10), true},
      {"less print", lookOf(part, 8), lookOf(card, 6), false},
      {"no card for certain", lookOf(part, 8), lookOf(card, 8, 0), false},
      {"a card by its zone without the face", lookOf(part, 8), withZone(lookOf(card, 8, 0)), false},
      {"neither certain", lookOf(part, 8, 0), lookOf(card, 8, 0), true},
      {"another card", lookOf(part, 8), lookOf(beside, 8), false},
      {"no better shape", lookOf(part, 8), lookOf(outlineOf(900, 900 / 1.75), 8), false},
      {"in its shape already", lookOf(tilted, 8), lookOf(card, 8), false},
  };
  for (const Case& each : cases) {
    const auto chosen = engine::inDocumentsShape(
        each.seen, {each.seen.outline, each.other.outline}, [&](const engine::Quad& outline) {
          const bool isOther = engine::apart(outline, each.other.outline) == 0;
          return isOther ? each.other : each.seen;
        });
    EXPECT_EQ(engine::apart(chosen.outline, each.other.outline) == 0, each.isTaken) << each.what;
  }
}

TEST(CardChoice, TakesALookFromNearerForWhatItShowsMoreOf) {
  const auto card = outlineOf(900, 900 / engine::kCardAspect);
  const auto page = outlineOf(800, 800 / engine::kPageAspect);
  const auto part = outlineOf(700, 900 / engine::kCardAspect);
  struct Case {
    const char* what;
    engine::CardLook seen;
    engine::CardLook closer;
    bool isTaken;
  };
  const Case cases[] = {
      {"more print", lookOf(page, 8), lookOf(card, 11), true},
      {"the same print", lookOf(page, 8), lookOf(card, 8), false},
      {"less print", lookOf(card, 8), lookOf(page, 6), false},
      {"without the face", lookOf(part, 8), withZone(lookOf(card, 8, 0)), false},
      {"a document's shape", lookOf(part, 8), lookOf(card, 8), true},
      {"no document's shape", lookOf(card, 8), lookOf(part, 8), false},
      {"less sure", lookOf(part, 8, 0.86), lookOf(card, 8, 0.8), false},
      {"less sure, with much more print", lookOf(part, 8, 0.86), lookOf(card, 10, 0.8), true},
  };
  for (const Case& each : cases) {
    const auto chosen = engine::clearer(each.seen, each.closer);
    EXPECT_EQ(engine::apart(chosen.outline, each.closer.outline) == 0, each.isTaken) << each.what;
  }
}

TEST(CardLook, TakesLinesAcrossACardForATitleWhileTheyAreFew) {
  const auto card = outlineOf(900, 900 / engine::kCardAspect);
  const auto withUpright = [&](int lines) {
    engine::CardLook look = lookOf(card, 8);
    for (int i = 0; i < lines; ++i) {
      look.lines.emplace_back();
      look.lines.back().box = {850.0 + 40 * i, 60, 25, 400};
    }
    return look;
  };
  EXPECT_TRUE(withUpright(2).isCertainlyACard());
  EXPECT_EQ(withUpright(2).content(), lookOf(card, 8).content());
  EXPECT_FALSE(withUpright(3).isCertainlyACard()) << "print that the outline lies across";
}

}  // namespace
}  // namespace corvana::tests
