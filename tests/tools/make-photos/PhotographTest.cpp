#include <array>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "Kind.h"
#include "Photograph.h"
#include "View.h"

namespace corvana::tests {
namespace {

using photos::Conditions;
using photos::Sheet;
using session::Random;

const cv::Size2d kCard(85.6, 53.98);
const std::array<cv::Vec3b, 4> kColours = {
    cv::Vec3b(250, 10, 10), {10, 250, 10}, {10, 10, 250}, {250, 250, 10}};

/// A card whose quarters have a colour each: upper left, upper right, lower right, lower left.
Sheet quarteredCard() {
  cv::Mat picture(540, 856, CV_8UC4);
  for (int row = 0; row < picture.rows; ++row)
    for (int column = 0; column < picture.cols; ++column) {
      const bool right = column >= picture.cols / 2;
      const bool lower = row >= picture.rows / 2;
      const cv::Vec3b& colour = kColours[lower ? (right ? 2 : 3) : (right ? 1 : 0)];
      picture.at<cv::Vec4b>(row, column) = {colour[0], colour[1], colour[2], 255};
    }
  return {picture, {{0.0, 0.0}, kCard}, kCard, {{{4.0, 4.0}, cv::Size2d(77.6, 46.0)}}};
}

Conditions cleanConditions(double turn, double tilt, double direction) {
  Conditions conditions;
  conditions.ground = "plain";
  conditions.cardWidth = 500.0;
  conditions.turn = turn;
  conditions.tilt = tilt;
  conditions.tiltDirection = direction;
  return conditions;
}

TEST(Photograph, SaysWhereTheCornersLie) {
  for (const double turn : {0.0, 37.0, 90.0, 180.0, 271.0}) {
    for (const photos::Kind kind : {photos::Kind::original, photos::Kind::print}) {
      Random random(3);
      const Conditions conditions = cleanConditions(turn, 14.0, 2.0 * turn);
      const auto made = photos::takePhotograph(photos::copied(quarteredCard(), kind, false, random),
                                               conditions, random);
      ASSERT_TRUE(made) << made.error();
      const cv::Point2f middle =
          0.25F * (made->corners[0] + made->corners[1] + made->corners[2] + made->corners[3]);
      for (std::size_t i = 0; i < 4; ++i) {
        const auto at = [&](float share) {
          return made->picture.at<cv::Vec3b>(
              cv::Point(made->corners[i] + share * (middle - made->corners[i])));
        };
        EXPECT_LT(cv::norm(at(0.05F), kColours[i]), 130.0) << turn << " " << i;
        EXPECT_GT(cv::norm(at(-0.05F), kColours[i]), 130.0) << turn << " " << i;
      }
    }
  }
}

TEST(Photograph, HidesNothingThatIsToBeRead) {
  const Sheet card = quarteredCard();
  int cut = 0;
  int thumbs = 0;
  for (std::uint64_t seed = 1; seed <= 400; ++seed) {
    Random random(seed);
    const Conditions conditions = photos::drawConditions("plain", kCard, card.contents, random);
    const photos::View view(conditions, kCard, card.place, card.contents);
    const cv::Rect2f frame({0.0F, 0.0F}, view.frame());
    for (const cv::Point2f& corner : view.corners(card.contents.front()))
      EXPECT_TRUE(frame.contains(corner)) << seed << " " << corner;
    int outside = 0;
    for (const cv::Point2f& corner : view.corners(card.place))
      outside += frame.contains(corner) ? 0 : 1;
    EXPECT_EQ(outside > 0, view.cuts()) << seed;
    cut += view.cuts() ? 1 : 0;
    if (!conditions.thumb) continue;
    ++thumbs;
    EXPECT_FALSE(card.contents.front().contains(conditions.thumb->tip)) << seed;
    EXPECT_TRUE(card.place.contains(conditions.thumb->tip)) << seed;
  }
  EXPECT_GT(cut, 10);
  EXPECT_GT(thumbs, 20);
}

TEST(Photograph, IsAsWideAndAsTiltedAsItsConditionsSay) {
  const Sheet card = quarteredCard();
  const photos::View level(cleanConditions(20.0, 0.0, 0.0), kCard, card.place, card.contents);
  const auto flat = level.corners(card.place);
  EXPECT_NEAR(cv::norm(flat[1] - flat[0]), 500.0, 0.01);
  EXPECT_NEAR(cv::norm(flat[2] - flat[3]), 500.0, 0.01);
  // Leaning about its long axis, the edge that went away is the shorter one.
  const photos::View leaning(cleanConditions(0.0, 15.0, 0.0), kCard, card.place, card.contents);
  const auto far = leaning.corners(card.place);
  const double ratio = cv::norm(far[1] - far[0]) / cv::norm(far[2] - far[3]);
  EXPECT_GT(std::abs(std::log(ratio)), 0.05);
}

}  // namespace
}  // namespace corvana::tests
