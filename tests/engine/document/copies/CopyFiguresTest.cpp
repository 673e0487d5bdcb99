#include <array>
#include <cmath>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "TestCards.h"
#include "engine/document/copies/ColouredFringes.h"
#include "engine/document/copies/CopyFigures.h"
#include "engine/document/guidance/CardQuality.h"
#include "engine/document/outline/CardWarp.h"
#include "engine/vision/MatViews.h"

namespace corvana::tests {
namespace {

const Held kPoses[] = {{.blur = 0.6},
                       {.width = 480, .roll = 6, .taper = 0.03, .background = 1, .noise = 6},
                       {.y = 600, .width = 690, .background = 2, .blur = 1.2}};

/// Straightened by the true corners.
platform::PixelBufferRef seen(const cv::Mat& side, const Held& held) {
  const HeldPicture shown = hold(side, held);
  engine::Quad outline;
  for (std::size_t i = 0; i < outline.corners.size(); ++i)
    outline.corners[i] = {shown.corners[i].x, shown.corners[i].y};
  return engine::straightened(*shown.picture, outline);
}

corvana::RealnessScores scoresOf(const cv::Mat& side, const Held& held) {
  const auto card = seen(side, held);
  return engine::realnessOf(engine::copyFigures(*card, engine::printSharpness(*card)), true);
}

/// As a machine without colour copies it.
cv::Mat grey(const cv::Mat& side) {
  cv::Mat copy;
  cv::cvtColor(side, copy, cv::COLOR_RGBA2GRAY);
  cv::cvtColor(copy, copy, cv::COLOR_GRAY2RGBA);
  std::vector<cv::Mat> channels;
  cv::split(side, channels);
  cv::insertChannel(channels[3], copy, 3);
  return copy;
}

/// As a display shows it and a sensor without a filter before it samples it: each of its points has
/// a third for each colour, and each point of the sensor sees as much of them as it covers.
cv::Mat displayed(const cv::Mat& side, int points, int samples) {
  cv::Mat image;
  cv::resize(side, image, {points, points * side.rows / side.cols}, 0, 0, cv::INTER_AREA);
  constexpr int kParts = 12;  // of a point, across
  cv::Mat lit(image.rows, image.cols * kParts, CV_8UC4);
  for (int row = 0; row < lit.rows; ++row) {
    for (int column = 0; column < lit.cols; ++column) {
      const cv::Vec4b point = image.at<cv::Vec4b>(row, column / kParts);
      cv::Vec4b& part = lit.at<cv::Vec4b>(row, column) = {20, 20, 20, point[3]};
      const int colour = column % kParts / (kParts / 3);
      part[colour] = cv::saturate_cast<std::uint8_t>(20 + 2.2 * point[colour]);
    }
  }
  cv::Mat sampled;
  cv::resize(lit, sampled, {samples, samples * side.rows / side.cols}, 0, 0, cv::INTER_AREA);
  return sampled;
}

TEST(CopyFigures, TakeCardsForCards) {
  for (const int design : {0, 1}) {
    const auto card = drawCard(design, holder(design), "person_a.jpg");
    for (const cv::Mat& side : {card.front, card.back}) {
      for (const Held& held : kPoses) {
        SCOPED_TRACE(testing::Message() << "design " << design << ", width " << held.width);
        const auto scores = scoresOf(side, held);
        EXPECT_LT(engine::copyScore(scores), engine::kSuspectCopy);
        EXPECT_FLOAT_EQ(scores.realScore, 1 - engine::copyScore(scores));
      }
    }
  }
}

TEST(CopyFigures, KnowACopyWithoutColourAlsoInColouredLight) {
  const auto card = drawCard(1, holder(0), "person_b.jpg");
  const cv::Mat warm = grey(card.front).mul(cv::Scalar(1.0, 0.9, 0.75, 1.0));
  for (const cv::Mat& copy : {grey(card.front), grey(card.back), warm}) {
    for (const Held& held : kPoses) {
      // The noise of a small picture has colours too.
      EXPECT_GE(scoresOf(copy, held).photocopyScore,
                held.width < 500 ? engine::kSuspectCopy : engine::kSureCopy);
    }
  }
}

TEST(CopyFigures, KnowTheBandsOfADisplay) {
  const auto card = drawCard(0, holder(1), "person_a.jpg");
  for (const int points : {485, 490, 512}) {
    const cv::Mat display = displayed(card.front, points, 500);
    const Held held{.width = 640, .background = 2, .blur = 0.8};
    EXPECT_GE(scoresOf(display, held).screenScore, engine::kSureCopy) << points;
  }
}

/// Faint bands on noise, each colour's by so many radians behind the one before it.
cv::Mat banded(double step) {
  cv::Mat picture(630, 1000, CV_8UC3);
  cv::RNG random(7);
  for (int row = 0; row < picture.rows; ++row) {
    for (int column = 0; column < picture.cols; ++column) {
      for (int colour = 0; colour < 3; ++colour) {
        const double band = std::cos(0.11 * column + 0.04 * row + step * colour);
        picture.at<cv::Vec3b>(row, column)[colour] =
            cv::saturate_cast<std::uint8_t>(170 + 5 * band + random.gaussian(3));
      }
    }
  }
  return picture;
}

TEST(CopyFigures, KnowBandsWhateverTheStepFromColourToColour) {
  constexpr double kLeastOfADisplay = 0.01;
  // A quarter of a period: red and blue are half a period apart.
  for (const double step : {0.6, 0.5 * CV_PI, -2.0 / 3.0 * CV_PI})
    EXPECT_GT(engine::colouredFringes(banded(step)), kLeastOfADisplay) << step;
  EXPECT_LT(engine::colouredFringes(banded(0)), 0.2 * kLeastOfADisplay) << "a printed pattern";
}

TEST(CopyFigures, PaleBlackMakesACardSuspectAtMost) {
  engine::CopyFigures figures{.colour = 0.2, .fringes = 0, .black = 0.1};
  EXPECT_LT(engine::copyScore(engine::realnessOf(figures, true)), engine::kSuspectCopy);
  figures.black = 0.9;
  const float score = engine::copyScore(engine::realnessOf(figures, true));
  EXPECT_GE(score, engine::kSuspectCopy);
  EXPECT_LT(score, engine::kSureCopy);
  figures.black.reset();
  EXPECT_LT(engine::copyScore(engine::realnessOf(figures, true)), engine::kSuspectCopy);
}

TEST(CopyFigures, ABackMayBeWithoutColours) {
  const engine::CopyFigures figures{.colour = 0.004, .fringes = 0, .black = 0.1};
  EXPECT_GE(engine::copyScore(engine::realnessOf(figures, true)), engine::kSureCopy);
  EXPECT_LT(engine::copyScore(engine::realnessOf(figures, false)), engine::kSuspectCopy);
}

}  // namespace
}  // namespace corvana::tests
