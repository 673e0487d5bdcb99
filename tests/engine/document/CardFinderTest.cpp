#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include "TestCards.h"
#include "engine/document/CardFinder.h"

namespace {

using engine::CardVerdict;
using tests::Held;

constexpr platform::CGRect kGuide{50, 804, 620, 391};

double worstCorner(const engine::Quad& outline, const std::array<cv::Point2f, 4>& truth) {
  double worst = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    worst = std::max(
        worst, std::hypot(outline.corners[i].x - truth[i].x, outline.corners[i].y - truth[i].y));
  }
  return worst;
}

TEST(CardFinder, FindsTheCornersOfCardsInAHand) {
  const std::vector<Held> poses{{},
                                {.x = 330, .y = 960, .width = 560, .roll = -8, .taper = 0.05},
                                {.x = 350, .y = 1020, .width = 620, .roll = 6, .background = 1},
                                {.width = 490, .roll = 12, .taper = 0.04, .background = 2},
                                {.y = 980, .width = 620, .background = 1, .blur = 1.6, .noise = 5},
                                {.x = 300, .y = 930, .width = 480, .roll = -12, .noise = 6}};
  for (int design = 0; design < 4; ++design) {
    const auto card = tests::drawCard(design, tests::holder(0), "person_b.jpg");
    for (const Held& held : poses) {
      const auto shown = tests::hold(design % 2 == 0 ? card.front : card.back, held);
      const auto sighting = engine::findCard(*shown.picture, kGuide);
      SCOPED_TRACE(testing::Message()
                   << "design " << design << ", width " << held.width << ", roll " << held.roll);
      ASSERT_EQ(sighting.verdict, CardVerdict::found);
      EXPECT_LT(worstCorner(*sighting.outline, shown.corners), 3.0);
    }
  }
}

TEST(CardFinder, SaysWhatIsWrongWithTheCardsPlace) {
  struct Case {
    Held held;
    CardVerdict verdict;
  };
  const std::vector<Case> cases{
      {{.width = 300, .thumb = false}, CardVerdict::moveCloser},
      {{.width = 450, .roll = 22}, CardVerdict::alignRectangle},
      {{.y = 700, .width = 500, .background = 2}, CardVerdict::alignRectangle},
      {{.width = 717}, CardVerdict::moveAway},
      {{.width = 800}, CardVerdict::moveAway},
      {{.x = 500, .width = 560}, CardVerdict::moveAway},
  };
  const auto card = tests::drawCard(1, tests::holder(1), "person_a.jpg");
  for (const Case& entry : cases) {
    const auto shown = tests::hold(card.front, entry.held);
    EXPECT_EQ(engine::findCard(*shown.picture, kGuide).verdict, entry.verdict)
        << "x " << entry.held.x << ", width " << entry.held.width << ", roll " << entry.held.roll;
  }
}

TEST(CardFinder, SeesNoCardWhereThereIsNone) {
  const cv::Mat nothing(1080, 1712, CV_8UC4, cv::Scalar::all(0));
  for (int background = 0; background < 4; ++background) {
    for (const double y : {200.0, 500.0, 804.0}) {
      const auto shown = tests::hold(nothing, {.background = background, .thumb = false});
      const auto sighting = engine::findCard(*shown.picture, {50, y, 620, 391});
      EXPECT_EQ(sighting.verdict, CardVerdict::none) << "background " << background << ", y " << y;
    }
  }
  EXPECT_EQ(engine::findCard(*tests::hold(nothing, {}).picture, {}).verdict, CardVerdict::none);
}

}  // namespace
