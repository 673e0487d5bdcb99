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

/// Two rows of stitches beside a seam from top to bottom.
void sew(cv::Mat& picture, double x, double scale, Random& random) {
  static const std::vector<cv::Scalar> kThreads = {{204, 140, 62}, {222, 206, 170}, {60, 70, 96}};
  const cv::Scalar thread = drawFrom(kThreads, random);
  cv::Mat fold = picture(cv::Rect(cv::Rect2d(x, 0.0, 1.4 * scale, picture.rows)) &
                         cv::Rect({}, picture.size()));
  fold *= 0.62;
  for (const double beside : {3.0 * scale, 9.0 * scale})
    for (double y = 0.0; y < picture.rows; y += 3.4 * scale)
      cv::line(picture, cv::Point2d(x + beside, y), cv::Point2d(x + beside, y + 2.3 * scale),
               thread, pixels(0.8 * scale), cv::LINE_AA);
}

/// A key's cap: a rim in the shade, the top that is a little lighter, and its letter.
void drawKey(cv::Mat& picture, const cv::Rect2d& key, const cv::Scalar& colour, double scale,
             const std::string& letter) {
  const double round = 1.6 * scale;
  const auto cap = [&](double inset, const cv::Scalar& shade) {
    const cv::Point2d corner(inset + round, inset + round);
    const cv::Rect2d inner(key.tl() + corner, key.br() - corner);
    cv::rectangle(picture, inner, shade, pixels(2.0 * round), cv::LINE_AA);
    cv::rectangle(picture, inner, shade, cv::FILLED);
  };
  cap(0.0, colour * 0.7);
  cap(1.1 * scale, colour);
  const bool isDark = colour[1] < 128.0;
  cv::putText(picture, letter, key.tl() + cv::Point2d(3.2 * scale, 7.6 * scale),
              cv::FONT_HERSHEY_SIMPLEX, 0.2 * scale, cv::Scalar::all(isDark ? 214.0 : 60.0),
              pixels(0.4 * scale), cv::LINE_AA);
}

/// Fibres that were not quite bleached.
void strewFibres(cv::Mat& picture, double scale, const cv::Scalar& paper, Random& random) {
  const double fibres = picture.size().area() / (14.0 * scale * scale);
  for (int i = 0; i < fibres; ++i) {
    const cv::Point2d from(random.uniform(0.0, picture.cols), random.uniform(0.0, picture.rows));
    const double angle = random.uniform(0.0, CV_PI);
    const double length = random.uniform(0.5, 3.0) * scale;
    cv::line(picture, from, from + length * cv::Point2d(std::cos(angle), std::sin(angle)),
             paper * random.uniform(0.75, 1.12), 1, cv::LINE_AA);
  }
}

}  // namespace

/// Denim: a twill of coloured and white threads, worn in places, with a seam or none.
cv::Mat denim(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kDyes = {
      {46, 64, 106}, {84, 112, 156}, {34, 38, 50}, {132, 154, 180}};
  const cv::Scalar dye = drawFrom(kDyes, random);
  const double thread = random.uniform(0.45, 0.8) * scale;
  const cv::Mat worn = 0.06 * unevenness(size, 45.0 * scale, 20.0 * scale, random) +
                       0.04 * unevenness(size, 3.0 * thread, 30.0 * scale, random);
  const cv::Mat slubs = 0.04 * unevenness(size, 12.0 * thread, 1.2 * thread, random);
  cv::Mat white(size, CV_32FC1);
  for (int row = 0; row < size.height; ++row)
    for (int column = 0; column < size.width; ++column) {
      const double twill = std::sin(2.0 * CV_PI * (row + 0.6 * column) / (3.2 * thread));
      white.at<float>(row, column) = static_cast<float>(0.16 + 0.15 * twill);
    }
  white += worn + slubs;
  cv::Mat picture(size, CV_8UC3);
  for (int row = 0; row < size.height; ++row)
    for (int column = 0; column < size.width; ++column) {
      const double share = std::clamp<double>(white.at<float>(row, column), 0.0, 0.8);
      const cv::Scalar colour = dye * (1.0 - share) + cv::Scalar(214, 216, 214) * share;
      picture.at<cv::Vec3b>(row, column) = cv::Vec3b(cv::Vec3d(colour[0], colour[1], colour[2]));
    }
  if (random.uniform(0.0, 1.0) < 0.6)
    sew(picture, random.uniform(0.1, 0.8) * size.width, scale, random);
  return picture;
}

/// A keyboard, larger than any: rows of keys, each row set off against the next, some keys wide.
cv::Mat keyboard(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kKeys = {
      {44, 46, 50}, {226, 226, 222}, {78, 82, 92}, {196, 190, 176}};
  const cv::Scalar key = drawFrom(kKeys, random);
  const cv::Scalar frame = random.uniform(0.0, 1.0) < 0.5 ? key * 0.45 : cv::Scalar(176, 178, 182);
  cv::Mat picture(size, CV_8UC3, frame);
  const double pitch = random.uniform(17.0, 19.2) * scale;
  const double gap = random.uniform(1.2, 3.4) * scale;
  for (double y = -random.uniform(0.0, 1.0) * pitch; y < size.height; y += pitch)
    for (double x = -random.uniform(0.0, 1.0) * pitch; x < size.width;) {
      const double width = random.uniform(0.0, 1.0) < 0.1 ? random.uniform(1.5, 2.3) : 1.0;
      const std::string letter(1, static_cast<char>('A' + static_cast<int>(random.uniform(0, 26))));
      drawKey(picture, {x, y, width * pitch - gap, pitch - gap}, key, scale,
              width > 1.0 ? "" : letter);
      x += width * pitch;
    }
  return lit(picture, 1.0 + 0.02 * unevenness(size, 0.6 * scale, 0.6 * scale, random));
}

/// Corrugated cardboard: the flutes show through, a fold crosses them, tape may cover some.
cv::Mat cardboard(cv::Size size, double scale, Random& random) {
  static const std::vector<cv::Scalar> kPapers = {
      {186, 148, 106}, {164, 124, 84}, {206, 176, 136}, {222, 214, 200}};
  const cv::Scalar paper = drawFrom(kPapers, random);
  cv::Mat picture(size, CV_8UC3, paper);
  strewFibres(picture, scale, paper, random);
  const double flute = random.uniform(4.0, 8.5) * scale;
  cv::Mat light = 1.0 + 0.03 * unevenness(size, 0.7 * scale, 0.7 * scale, random) +
                  0.04 * unevenness(size, 50.0 * scale, 30.0 * scale, random);
  for (int row = 0; row < size.height; ++row)
    light.row(row) += cv::Scalar(0.055 * std::sin(2.0 * CV_PI * row / flute));
  const int fold = static_cast<int>(random.uniform(0.1, 0.9) * size.width);
  const cv::Rect frame({}, size);
  light(cv::Rect(fold, 0, pixels(1.6 * scale), size.height) & frame) *= 0.72;
  light(cv::Rect(fold + pixels(1.6 * scale), 0, pixels(1.2 * scale), size.height) & frame) *= 1.12;
  if (random.uniform(0.0, 1.0) < 0.5) {
    const int y = static_cast<int>(random.uniform(0.0, 0.9) * size.height);
    cv::Mat tape = picture(cv::Rect(0, y, size.width, pixels(50.0 * scale)) & frame);
    cv::addWeighted(tape, 0.45, cv::Mat(tape.size(), CV_8UC3, cv::Scalar(176, 128, 70)), 0.55, 0.0,
                    tape);
  }
  return lit(picture, light);
}

}  // namespace corvana::photos
