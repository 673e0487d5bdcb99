#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "GroundLight.h"
#include "GroundPainters.h"
#include "People.h"

namespace corvana::photos {
namespace {

using session::Random;

cv::Point2d ahead(double angle, double reach) {
  return reach * cv::Point2d(std::cos(angle), std::sin(angle));
}

cv::Point2d somewhere(cv::Size size, Random& random) {
  const double x = random.uniform(0.0, size.width);
  return {x, random.uniform(0.0, size.height)};
}

struct Way {
  std::vector<cv::Point> points;
  double width;
  cv::Scalar colour;
};

/// From one side of the map to another, winding.
std::vector<cv::Point> wayAcross(cv::Size size, double scale, double winding, Random& random) {
  const double reach = 0.5 * std::hypot(size.width, size.height);
  const double side = random.uniform(0.0, 2.0 * CV_PI);
  const double step = 4.0 * scale;
  cv::Point2d at = cv::Point2d(0.5 * size.width, 0.5 * size.height) + ahead(side, reach);
  double heading = side + CV_PI + 0.5 * random.normal();
  std::vector<cv::Point> points;
  for (double gone = 0.0; gone < 2.2 * reach; gone += step) {
    points.emplace_back(at);
    heading += winding * random.normal();
    at += ahead(heading, step);
  }
  return points;
}

/// A town: streets that cross each other, more or less, at right angles.
void layStreets(std::vector<Way>& ways, cv::Size size, double scale, Random& random) {
  const cv::Point2d centre = somewhere(size, random);
  const double reach = random.uniform(15.0, 45.0) * scale;
  const double lie = random.uniform(0.0, CV_PI);
  for (const double across : {lie, lie + 0.5 * CV_PI})
    for (double aside = -reach; aside < reach; aside += random.uniform(4.0, 9.0) * scale) {
      const cv::Point2d middle = centre + ahead(across + 0.5 * CV_PI, aside);
      const double half = reach * random.uniform(0.4, 1.1);
      const double angle = across + 0.04 * random.normal();
      ways.push_back({{middle - ahead(angle, half), middle + ahead(angle, half)},
                      random.uniform(0.7, 1.1) * scale,
                      {252, 252, 250}});
    }
}

/// Woods and lakes, as a map fills them.
void strewAreas(cv::Mat& sheet, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {
      {190, 214, 168}, {206, 222, 182}, {170, 204, 226}, {226, 214, 204}};
  const double areas = sheet.size().area() / (2200.0 * scale * scale);
  for (int i = 0; i < areas; ++i) {
    const cv::Point2d centre = somewhere(sheet.size(), random);
    const double reach = random.uniform(7.0, 24.0) * scale;
    const double lobes = std::floor(random.uniform(2.0, 5.0));
    std::vector<cv::Point> rim;
    for (double angle = 0.0; angle < 2.0 * CV_PI; angle += 0.15) {
      const double uneven = 0.3 * std::sin(lobes * angle) + 0.05 * random.normal();
      rim.emplace_back(centre + ahead(angle, reach * (1.0 + uneven)));
    }
    cv::fillPoly(sheet, std::vector{rim}, drawFrom(kColours, random), cv::LINE_AA);
  }
}

/// All rims before all fillings, so that ways open into each other where they meet.
void drawWays(cv::Mat& sheet, const std::vector<Way>& ways, double scale) {
  const cv::Scalar rim(150, 144, 138);
  for (const Way& way : ways)
    cv::polylines(sheet, way.points, false, rim, pixels(way.width + 0.5 * scale), cv::LINE_AA);
  for (const Way& way : ways)
    cv::polylines(sheet, way.points, false, way.colour, pixels(way.width), cv::LINE_AA);
}

void namePlaces(cv::Mat& sheet, double scale, Random& random) {
  const double places = sheet.size().area() / (1100.0 * scale * scale);
  for (int i = 0; i < places; ++i) {
    std::string name = words(static_cast<std::size_t>(random.uniform(3.0, 9.0)), random);
    name.front() = static_cast<char>(name.front() - 'a' + 'A');
    const double size = random.uniform(0.05, 0.12) * scale;
    cv::putText(sheet, name, somewhere(sheet.size(), random), cv::FONT_HERSHEY_SIMPLEX, size,
                cv::Scalar::all(random.uniform(20.0, 90.0)), pixels(0.2 * scale), cv::LINE_AA);
  }
}

/// A motif of the print on oilcloth: a blossom, or a fruit with its leaf.
void drawBlossom(cv::Mat& picture, cv::Point2d at, double reach, int petals,
                 const cv::Scalar& colour, const cv::Scalar& heart, Random& random) {
  const double turn = random.uniform(0.0, 2.0 * CV_PI);
  for (int i = 0; i < petals; ++i) {
    const double angle = turn + 2.0 * CV_PI * i / petals;
    const cv::Size2d petal(0.9 * reach, 2.4 * reach / petals);
    cv::ellipse(picture,
                cv::RotatedRect(at + ahead(angle, 0.55 * reach), petal,
                                static_cast<float>(angle * 180.0 / CV_PI)),
                colour * random.uniform(0.85, 1.1), cv::FILLED, cv::LINE_AA);
  }
  cv::circle(picture, at, pixels(0.28 * reach), heart, cv::FILLED, cv::LINE_AA);
}

void drawFruit(cv::Mat& picture, cv::Point2d at, double reach, const cv::Scalar& colour,
               const cv::Scalar& leaf, Random& random) {
  const double turn = random.uniform(0.0, 2.0 * CV_PI);
  const auto degrees = static_cast<float>(turn * 180.0 / CV_PI);
  const auto fill = [&](cv::Point2d middle, cv::Size2d size, float angle, const cv::Scalar& ink) {
    cv::ellipse(picture, cv::RotatedRect(middle, size, angle), ink, cv::FILLED, cv::LINE_AA);
  };
  fill(at + ahead(turn, reach), {1.1 * reach, 0.5 * reach}, degrees + 35.0F, leaf);
  fill(at, {1.9 * reach, 1.3 * reach}, degrees, colour);
  fill(at + ahead(turn + 2.0, 0.3 * reach), {0.8 * reach, 0.4 * reach}, degrees, colour * 1.15);
}

/// One patch of a quilt: plain, striped, dotted or checked.
void sewPatch(cv::Mat patch, double scale, Random& random) {
  static const std::vector<cv::Scalar> kCottons = {
      {236, 228, 214}, {176, 70, 74},   {62, 86, 128}, {206, 176, 108},
      {112, 140, 122}, {214, 164, 164}, {86, 74, 96},  {226, 236, 240}};
  patch.setTo(drawFrom(kCottons, random));
  const cv::Scalar ink = drawFrom(kCottons, random);
  const double step = random.uniform(3.0, 9.0) * scale;
  const double kind = random.uniform(0.0, 1.0);
  for (double x = 0.5 * step; kind > 0.25 && x < patch.cols; x += step) {
    if (kind < 0.5 || kind > 0.75)
      cv::line(patch, cv::Point2d(x, 0.0), cv::Point2d(x, patch.rows), ink, pixels(0.3 * step));
    for (double y = 0.5 * step; kind >= 0.5 && kind < 0.75 && y < patch.rows; y += step)
      cv::circle(patch, cv::Point2d(x, y), pixels(0.22 * step), ink, cv::FILLED, cv::LINE_AA);
  }
  for (double y = 0.5 * step; kind > 0.75 && y < patch.rows; y += step)
    cv::line(patch, cv::Point2d(0.0, y), cv::Point2d(patch.cols, y), ink, pixels(0.3 * step));
}

}  // namespace

/// A map: towns, woods, lakes and roads with their names, and the folds of the sheet.
cv::Mat atlas(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kLands = {
      {240, 234, 216}, {228, 236, 216}, {244, 242, 238}, {224, 222, 214}};
  static const std::vector<cv::Scalar> kRoads = {
      {250, 214, 92}, {240, 150, 80}, {214, 84, 88}, {252, 236, 160}};
  cv::Mat sheet(size, CV_8UC3, drawFrom(kLands, random));
  strewAreas(sheet, scale, random);
  const cv::Scalar water(150, 190, 222);
  cv::polylines(sheet, wayAcross(size, scale, 0.22, random), false, water,
                pixels(random.uniform(3.0, 11.0) * scale), cv::LINE_AA);
  std::vector<Way> ways;
  const double towns = size.area() / (11000.0 * scale * scale);
  for (int i = 0; i < towns; ++i)
    layStreets(ways, size, scale, random);
  for (int left = static_cast<int>(random.uniform(5.0, 12.0)); left > 0; --left)
    ways.push_back({wayAcross(size, scale, 0.12, random), random.uniform(1.0, 2.6) * scale,
                    drawFrom(kRoads, random)});
  drawWays(sheet, ways, scale);
  namePlaces(sheet, scale, random);
  cv::Mat light = 1.0 + 0.015 * unevenness(size, 40.0 * scale, 40.0 * scale, random);
  const double fold = random.uniform(80.0, 130.0) * scale;
  const cv::Rect frame({}, size);
  for (double x = random.uniform(0.0, fold); x < size.width; x += fold)
    light(cv::Rect(cv::Rect2d(x, 0.0, 0.8 * scale, size.height)) & frame) *= 0.86;
  for (double y = random.uniform(0.0, fold); y < size.height; y += fold)
    light(cv::Rect(cv::Rect2d(0.0, y, size.width, 0.8 * scale)) & frame) *= 1.08;
  return lit(sheet, light);
}

/// Oilcloth: blossoms or fruit printed in rows on a strong colour, an embossed weave, and a shine.
cv::Mat oilcloth(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kColours = {{188, 40, 50},   {30, 88, 150}, {240, 204, 70},
                                                   {238, 234, 220}, {40, 116, 88}, {232, 140, 60}};
  static const std::vector<cv::Scalar> kLeaves = {{60, 130, 60}, {30, 84, 60}, {250, 220, 90}};
  cv::Mat picture(size, CV_8UC3, drawFrom(kColours, random));
  const bool isFruit = random.uniform(0.0, 1.0) < 0.5;
  const int petals = static_cast<int>(random.uniform(5.0, 10.0));
  const cv::Scalar colour = drawFrom(kColours, random), other = drawFrom(kLeaves, random);
  const double step = random.uniform(14.0, 34.0) * scale;
  int row = 0;
  for (double y = 0.0; y < size.height + step; y += 0.8 * step, ++row)
    for (double x = row % 2 * 0.5 * step; x < size.width + step; x += step) {
      const double reach = step * random.uniform(0.2, 0.34);
      if (isFruit)
        drawFruit(picture, {x, y}, reach, colour, other, random);
      else
        drawBlossom(picture, {x, y}, reach, petals, colour, other, random);
    }
  const double weave = random.uniform(0.5, 0.9) * scale;
  const cv::Point2d shine = somewhere(size, random);
  const double reach = random.uniform(40.0, 90.0) * scale;
  cv::Mat light = 0.95 + 0.03 * unevenness(size, 30.0 * scale, 60.0 * scale, random);
  for (int y = 0; y < size.height; ++y)
    for (int x = 0; x < size.width; ++x) {
      const double far = cv::norm(cv::Point2d(x, y) - shine) / reach;
      light.at<float>(y, x) +=
          static_cast<float>(0.03 * std::sin(CV_PI * x / weave) * std::sin(CV_PI * y / weave) +
                             0.3 * std::exp(-far * far));
    }
  return lit(picture, light);
}

/// A quilt: patches of cotton prints, puffed up between the rows of stitches that hold the filling.
cv::Mat quilt(cv::Size size, double scale, Random& random) {
  const int patch = pixels(random.uniform(28.0, 75.0) * scale);
  const cv::Rect frame({}, size);
  cv::Mat picture(size, CV_8UC3);
  for (int y = 0; y < size.height; y += patch)
    for (int x = 0; x < size.width; x += patch)
      sewPatch(picture(cv::Rect(x, y, patch, patch) & frame), scale, random);
  const double puff = patch / std::floor(random.uniform(2.0, 4.0));
  const double stitch = random.uniform(2.4, 3.6) * scale;
  // How far a point is along a puff, and the light there from the upper left.
  const auto along = [&](int at) { return std::fmod(at, puff) / puff; };
  const auto slope = [](double share) { return std::pow(std::abs(2.0 * share - 1.0), 3.0); };
  cv::Mat light = 1.0 + 0.05 * unevenness(size, 5.0 * scale, 9.0 * scale, random) +
                  0.04 * unevenness(size, 0.5 * scale, 0.5 * scale, random);
  for (int y = 0; y < size.height; ++y)
    for (int x = 0; x < size.width; ++x) {
      const double across = along(x), down = along(y);
      const double lean =
          slope(across) * (across < 0.5 ? 0.12 : -0.22) + slope(down) * (down < 0.5 ? 0.1 : -0.2);
      const bool isSeam = puff * std::min(across, down) < 0.7 * scale;
      const double run = across < down ? y : x;
      const double thread = isSeam && std::fmod(run, stitch) < 0.65 * stitch ? 1.35 : 1.0;
      light.at<float>(y, x) *= static_cast<float>((1.0 + lean) * (isSeam ? 0.72 : 1.0) * thread);
    }
  return lit(picture, light);
}

}  // namespace corvana::photos
