#include "Ornaments.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <opencv2/imgproc.hpp>

namespace corvana::photos {
namespace {

using Points = std::vector<cv::Point>;

cv::Point2d middleOf(const cv::Rect2d& place) {
  return 0.5 * (place.tl() + place.br());
}

cv::Point2d towards(double angle, double reach) {
  return reach * cv::Point2d(std::cos(angle), std::sin(angle));
}

int stroke(const cv::Rect2d& place, double share) {
  return std::max(1, static_cast<int>(share * place.width));
}

/// Upright bars below a plain head, in a rim that is round below.
void drawShield(cv::Mat& picture, const cv::Rect2d& place, const cv::Scalar& colour) {
  const cv::Point2d middle = middleOf(place);
  Points rim = {place.tl(), cv::Point2d(place.br().x, place.y)};
  for (double angle = 0.0; angle <= CV_PI; angle += CV_PI / 40.0)
    rim.emplace_back(cv::Point2d(middle.x + 0.5 * place.width * std::cos(angle),
                                 place.y + place.height * (0.4 + 0.6 * std::sin(angle))));
  cv::Mat inside(picture.size(), CV_8UC1, cv::Scalar(0));
  cv::fillPoly(inside, rim, cv::Scalar(255));
  cv::Mat bars(picture.size(), CV_8UC1, cv::Scalar(0));
  for (const double at : {0.14, 0.43, 0.72})
    cv::rectangle(bars,
                  cv::Rect2d(place.x + at * place.width, place.y + 0.3 * place.height,
                             0.15 * place.width, 0.7 * place.height),
                  cv::Scalar(255), cv::FILLED);
  picture.setTo(colour, inside & bars);
  cv::polylines(picture, rim, true, colour, stroke(place, 0.05), cv::LINE_AA);
}

void drawRing(cv::Mat& picture, const cv::Rect2d& place, const cv::Scalar& colour) {
  for (int star = 0; star < 12; ++star) {
    const cv::Point2d middle = middleOf(place) + towards(CV_PI * star / 6.0, 0.42 * place.width);
    Points corners;
    for (int i = 0; i < 10; ++i)
      corners.emplace_back(
          middle + towards(CV_PI * (i / 5.0 - 0.5), place.width * (i % 2 == 0 ? 0.08 : 0.032)));
    cv::fillPoly(picture, corners, colour, cv::LINE_AA);
  }
}

/// A stem, pairs of leaves and one at the tip.
void drawSprig(cv::Mat& picture, const cv::Rect2d& place, const cv::Scalar& colour) {
  const double x = middleOf(place).x;
  cv::line(picture, cv::Point2d(x, place.br().y), cv::Point2d(x, place.y + 0.3 * place.height),
           colour, stroke(place, 0.05), cv::LINE_AA);
  const cv::Size2d leaf(0.44 * place.width, 0.17 * place.width);
  const auto drawLeaf = [&](cv::Point2d root, double angle) {
    const cv::Point2d middle = root + towards(angle, 0.5 * leaf.width);
    cv::ellipse(picture, cv::RotatedRect(middle, leaf, static_cast<float>(angle * 180.0 / CV_PI)),
                colour, cv::FILLED, cv::LINE_AA);
  };
  for (const double down : {0.42, 0.64, 0.86})
    for (const double angle : {-0.65, CV_PI + 0.65})
      drawLeaf({x, place.y + down * place.height}, angle);
  drawLeaf({x, place.y + 0.4 * place.height}, -0.5 * CV_PI);
}

/// A disc, and rays around it.
void drawSun(cv::Mat& picture, const cv::Rect2d& place, const cv::Scalar& colour) {
  const cv::Point2d middle = middleOf(place);
  cv::circle(picture, middle, stroke(place, 0.22), colour, cv::FILLED, cv::LINE_AA);
  for (int ray = 0; ray < 16; ++ray) {
    const double angle = CV_PI * ray / 8.0;
    const double reach = place.width * (ray % 2 == 0 ? 0.5 : 0.4);
    cv::line(picture, middle + towards(angle, 0.27 * place.width), middle + towards(angle, reach),
             colour, stroke(place, 0.045), cv::LINE_AA);
  }
}

}  // namespace

void drawShape(cv::Mat& picture, const cv::Rect2d& place, const std::string& shape,
               const cv::Scalar& colour) {
  if (shape == "shield") drawShield(picture, place, colour);
  if (shape == "ring") drawRing(picture, place, colour);
  if (shape == "sprig") drawSprig(picture, place, colour);
  if (shape == "sun") drawSun(picture, place, colour);
}

void drawChip(cv::Mat& picture, const cv::Rect2d& place) {
  const cv::Scalar gold(208, 174, 98), parting(126, 98, 48);
  // Thick lines have round corners, as the plate has.
  const int rim = stroke(place, 0.12);
  const cv::Rect2d inner(place.tl() + cv::Point2d(rim, rim), place.br() - cv::Point2d(rim, rim));
  cv::rectangle(picture, inner, gold, 2 * rim, cv::LINE_AA);
  cv::rectangle(picture, inner, gold, cv::FILLED);
  const auto at = [&](double x, double y) {
    return cv::Point(place.tl() + cv::Point2d(x * place.width, y * place.height));
  };
  const auto part = [&](cv::Point from, cv::Point to) {
    cv::line(picture, from, to, parting, stroke(place, 0.02), cv::LINE_AA);
  };
  for (const double y : {0.25, 0.5, 0.75}) {
    part(at(0.0, y), at(0.33, y));
    part(at(0.67, y), at(1.0, y));
  }
  cv::rectangle(picture, at(0.33, 0.2), at(0.67, 0.8), parting, stroke(place, 0.02), cv::LINE_AA);
  part(at(0.5, 0.0), at(0.5, 0.2));
  part(at(0.5, 0.8), at(0.5, 1.0));
}

}  // namespace corvana::photos
