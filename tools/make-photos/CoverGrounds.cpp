#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "GroundLight.h"
#include "GroundPainters.h"
#include "People.h"

namespace corvana::photos {
namespace {

using session::Random;

void numberDay(cv::Mat& day, int date, bool isHoliday, double scale) {
  const cv::Scalar ink = isHoliday ? cv::Scalar(206, 40, 48) : cv::Scalar(56, 58, 64);
  cv::putText(day, std::to_string(date), cv::Point2d(1.6 * scale, 6.6 * scale),
              cv::FONT_HERSHEY_DUPLEX, 0.21 * scale, ink, pixels(0.4 * scale), cv::LINE_AA);
}

/// What is to be done on a day, by hand; some days a marker has coloured.
void fillDay(cv::Mat day, double scale, Random& random) {
  static const std::vector<cv::Scalar> kMarkers = {
      {252, 236, 120}, {176, 228, 150}, {250, 176, 190}, {160, 212, 240}};
  static const std::vector<cv::Scalar> kInks = {{30, 44, 130}, {40, 40, 44}, {170, 40, 50}};
  if (random.uniform(0.0, 1.0) < 0.18) {
    const cv::Mat marked(day.size(), CV_8UC3, drawFrom(kMarkers, random));
    cv::multiply(day, marked, day, 1.0 / 255.0);
  }
  const cv::Scalar ink = drawFrom(kInks, random);
  const double letter = random.uniform(0.09, 0.14) * scale;
  const double lines = std::floor(random.uniform(0.0, 3.6));
  for (double line = 0.0; line < lines; ++line)
    cv::putText(day, words(static_cast<std::size_t>(random.uniform(4.0, 13.0)), random),
                cv::Point2d(2.0 * scale, (12.0 + 5.0 * line) * scale),
                cv::FONT_HERSHEY_SCRIPT_SIMPLEX, letter, ink, pixels(0.25 * scale), cv::LINE_AA);
}

/// Where a cup stood: a ring that is darker along its rim and broken.
void stain(cv::Mat& light, double scale, Random& random) {
  const cv::Point2d at{random.uniform(0.0, light.cols), random.uniform(0.0, light.rows)};
  const cv::Size2d cup = cv::Size2d(1.0, 0.98) * (random.uniform(30.0, 42.0) * scale);
  const double from = random.uniform(0.0, 360.0);
  const auto arc = [&](double degrees, double width, double dark) {
    cv::ellipse(light, at, cup, 0.0, from, from + degrees, cv::Scalar(dark), pixels(width * scale),
                cv::LINE_AA);
  };
  arc(random.uniform(200.0, 340.0), 2.2, 0.9);
  arc(random.uniform(120.0, 300.0), 0.6, 0.78);
}

/// The holes of one motif of filet crochet that are filled: a blossom, alike in its four quarters.
cv::Mat drawMotif(int cells, Random& random) {
  cv::Mat filled(cells, cells, CV_8UC1, cv::Scalar(0));
  const double petals = random.uniform(0.0, 1.0) < 0.5 ? 2.0 : 4.0;
  const double heart = random.uniform(0.12, 0.3);
  const double far = random.uniform(0.5, 0.85);
  const double strewn = random.uniform(0.0, 0.12);
  const double middle = 0.5 * (cells - 1);
  for (int row = 0; 2 * row < cells; ++row)
    for (int column = 0; 2 * column < cells; ++column) {
      const cv::Point2d from = cv::Point2d(column - middle, row - middle) / middle;
      const double away = cv::norm(from);
      const double petal = far * std::abs(std::cos(0.5 * petals * std::atan2(from.y, from.x)));
      const bool isFilled =
          (away > heart && away < petal) || away < 0.5 * heart || random.uniform(0.0, 1.0) < strewn;
      for (const int y : {row, cells - 1 - row})
        for (const int x : {column, cells - 1 - column})
          filled.at<uchar>(y, x) = isFilled ? 255 : 0;
    }
  return filled;
}

/// Threads around all holes of a net, and in those of the motif.
cv::Mat crochet(cv::Size size, double hole, double thread, const cv::Mat& motif) {
  cv::Mat threads(size, CV_8UC1, cv::Scalar(0));
  const int width = pixels(thread);
  int row = 0;
  for (double y = 0.0; y < size.height; y += hole, ++row) {
    cv::line(threads, cv::Point2d(0.0, y), cv::Point2d(size.width, y), cv::Scalar(255), width);
    int column = 0;
    for (double x = 0.0; x < size.width; x += hole, ++column) {
      if (motif.at<uchar>(row % motif.rows, column % motif.cols) == 0) continue;
      for (const double beside : {0.3, 0.7})
        cv::line(threads, cv::Point2d(x + beside * hole, y),
                 cv::Point2d(x + beside * hole, y + hole), cv::Scalar(255), pixels(1.5 * thread));
    }
  }
  for (double x = 0.0; x < size.width; x += hole)
    cv::line(threads, cv::Point2d(x, 0.0), cv::Point2d(x, size.height), cv::Scalar(255), width);
  return threads;
}

/// A flake of wood, along which its grain runs, with an edge in the shade.
void pressFlake(cv::Mat& board, double lie, double scale, const cv::Scalar& wood, Random& random) {
  const cv::Point2d at{random.uniform(0.0, board.cols), random.uniform(0.0, board.rows)};
  const double angle = lie + 0.45 * random.normal();
  const cv::Point2d along(std::cos(angle), std::sin(angle)), across(-along.y, along.x);
  const double half = random.uniform(12.0, 55.0) * scale;
  const double breadth = random.uniform(2.0, 11.0) * scale;
  const auto corner = [&](double end, double side) -> cv::Point {
    const double far = end * random.uniform(0.8, 1.0) * half;
    return at + far * along + side * random.uniform(0.75, 1.0) * breadth * across;
  };
  const std::vector<cv::Point> rim = {corner(-1.0, -1.0), corner(1.0, -1.0), corner(1.0, 1.0),
                                      corner(-1.0, 1.0)};
  const cv::Scalar colour = wood * random.uniform(0.72, 1.15);
  cv::fillConvexPoly(board, rim, colour, cv::LINE_AA);
  for (double side = -0.6; side < 0.7; side += random.uniform(0.15, 0.5)) {
    const cv::Point2d beside = at + side * breadth * across;
    const double reach = random.uniform(0.3, 0.75) * half;
    cv::line(board, beside - reach * along, beside + reach * along,
             colour * random.uniform(0.86, 1.08), pixels(0.3 * scale), cv::LINE_AA);
  }
  cv::line(board, rim[2], rim[3], colour * 0.6, pixels(0.35 * scale), cv::LINE_AA);
}

}  // namespace

/// A calendar that covers a desk: a frame for each day, with its number and what is to be done.
cv::Mat calendar(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kInks = {
      {30, 74, 140}, {150, 30, 44}, {60, 66, 72}, {20, 110, 96}};
  const double white = random.uniform(232.0, 250.0);
  const cv::Scalar paper(white, white, white * random.uniform(0.92, 1.0));
  const cv::Scalar ink = drawFrom(kInks, random);
  const cv::Size2d day{random.uniform(42.0, 68.0) * scale, random.uniform(34.0, 56.0) * scale};
  cv::Mat sheet(size, CV_8UC3, paper);
  const cv::Rect frame({}, size);
  const int first = static_cast<int>(random.uniform(0.0, 31.0));
  int week = 0;
  for (double y = -random.uniform(0.0, 1.0) * day.height; y < size.height; y += day.height, ++week)
    for (int weekday = 0; weekday * day.width < size.width; ++weekday) {
      const cv::Rect place =
          cv::Rect(cv::Rect2d(weekday * day.width, y, day.width, day.height)) & frame;
      if (place.width < 8.0 * scale || place.height < 8.0 * scale) continue;
      cv::Mat box = sheet(place);
      if (weekday % 7 > 4) box.setTo(paper * 0.92);
      const int date = (first + 7 * week + weekday % 7) % 31 + 1;
      numberDay(box, date, weekday % 7 == 6 || random.uniform(0.0, 1.0) < 0.04, scale);
      fillDay(box, scale, random);
      cv::rectangle(sheet, place, ink, pixels((week % 4 == 0 ? 0.7 : 0.35) * scale));
    }
  cv::Mat light = 1.0 + 0.015 * unevenness(size, 70.0 * scale, 50.0 * scale, random) +
                  0.008 * unevenness(size, 0.4 * scale, 0.4 * scale, random);
  if (random.uniform(0.0, 1.0) < 0.6) stain(light, scale, random);
  return lit(sheet, light);
}

/// Lace: filet crochet, through whose holes a table of wood or another cloth shows.
cv::Mat lace(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kTables = {{92, 56, 38},  {146, 98, 60}, {34, 62, 110},
                                                  {150, 34, 50}, {40, 92, 74},  {196, 160, 120}};
  static const std::vector<cv::Scalar> kCottons = {
      {244, 242, 236}, {232, 220, 192}, {226, 228, 232}, {214, 190, 160}};
  const double hole = random.uniform(2.6, 5.5) * scale;
  const cv::Mat motif = drawMotif(2 * static_cast<int>(random.uniform(5.0, 11.0)), random);
  const cv::Mat threads = crochet(size, hole, random.uniform(0.16, 0.28) * hole, motif);
  cv::Mat picture = coloured(1.0 + 0.07 * unevenness(size, 0.7 * scale, 35.0 * scale, random),
                             drawFrom(kTables, random));
  const int aside = pixels(0.5 * scale);
  cv::Mat shadow(size, CV_8UC1, cv::Scalar(0));
  threads(cv::Rect(0, 0, size.width - aside, size.height - aside))
      .copyTo(shadow(cv::Rect(aside, aside, size.width - aside, size.height - aside)));
  cv::Mat(0.55 * picture).copyTo(picture, shadow);
  const double twist = 0.9 * scale;
  cv::Mat light = 0.98 + 0.05 * unevenness(size, 0.5 * scale, 0.5 * scale, random) +
                  0.03 * unevenness(size, 50.0 * scale, 30.0 * scale, random);
  for (int row = 0; row < size.height; ++row)
    for (int column = 0; column < size.width; ++column)
      light.at<float>(row, column) +=
          static_cast<float>(0.1 * std::sin(2.0 * CV_PI * (row + column) / twist));
  coloured(light, drawFrom(kCottons, random)).copyTo(picture, threads);
  return picture;
}

/// Strandboard, as on trestles and floors where people build: flakes of wood pressed together, most
/// of them along the board.
cv::Mat strandboard(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kWoods = {
      {214, 176, 120}, {196, 150, 96}, {226, 196, 148}, {176, 128, 78}};
  cv::Mat board(size, CV_8UC3, cv::Scalar(150, 108, 66));
  const double lie = random.uniform(0.0, CV_PI);
  const double flakes = size.area() / (90.0 * scale * scale);
  for (int i = 0; i < flakes; ++i)
    pressFlake(board, lie, scale, drawFrom(kWoods, random), random);
  return lit(board, 1.0 + 0.04 * unevenness(size, 0.5 * scale, 0.5 * scale, random) +
                        0.03 * unevenness(size, 60.0 * scale, 60.0 * scale, random));
}

}  // namespace corvana::photos
