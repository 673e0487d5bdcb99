#include "PresentedLook.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include <opencv2/imgproc.hpp>

namespace corvana::session {
namespace {

constexpr double kPrintBlack = 34.0;  // of 255: ink on paper is never black
constexpr double kPrintWhite = 228.0;
constexpr double kDisplayBlack = 16.0;
constexpr double kDisplayGamma = 0.88;
constexpr double kBeat = 0.035;  // of the brightness
constexpr double kFlicker = 0.02;
constexpr double kBands = 2.3;   // over the picture's height
constexpr double kBezel = 26.0;  // pixels
const cv::Scalar kBezelColour(22, 22, 24);
constexpr double kReflection = 26.0;

/// How far inside the rectangle a place lies, pixels; negative outside.
double inside(double x, double y, const cv::Rect2d& area) {
  return std::min({x - area.x, area.br().x - x, y - area.y, area.br().y - y});
}

cv::Mat displayTones() {
  cv::Mat tones(1, 256, CV_8UC3);
  const cv::Vec3d white(0.96, 0.98, 1.0);
  for (int value = 0; value < 256; ++value)
    for (int channel = 0; channel < 3; ++channel)
      tones.at<cv::Vec3b>(0, value)[channel] = cv::saturate_cast<std::uint8_t>(
          kDisplayBlack +
          (250.0 - kDisplayBlack) * white[channel] * std::pow(value / 255.0, kDisplayGamma));
  return tones;
}

}  // namespace

cv::Mat emptyRoom(cv::Size size, Random& random) {
  cv::Mat room(size, CV_8UC3, cv::Scalar(186, 180, 170));
  const int door = static_cast<int>(random.uniform(0.02, 0.12) * size.width);
  cv::rectangle(room, {door, size.height / 8, size.width / 4, size.height}, {150, 122, 96}, -1);
  cv::rectangle(room, {door, size.height / 8, size.width / 4, size.height}, {112, 88, 66}, 7);
  const int shelf = static_cast<int>(random.uniform(0.25, 0.5) * size.height);
  cv::rectangle(room, {2 * size.width / 3, shelf, size.width / 3, 22}, {120, 96, 74}, -1);
  for (int book = 0; book < 7; ++book)
    cv::rectangle(room,
                  {2 * size.width / 3 + book * size.width / 21, shelf - 120 + 9 * (book % 3),
                   size.width / 21 - 4, 120 - 9 * (book % 3)},
                  {random.uniform(60, 200), random.uniform(60, 180), random.uniform(60, 190)}, -1);
  cv::GaussianBlur(room, room, {}, 3.0);
  return room;
}

void printed(cv::Mat& picture) {
  picture.convertTo(picture, -1, (kPrintWhite - kPrintBlack) / 255.0, kPrintBlack);
}

cv::Mat shareOfSheet(const cv::Mat& mapX, const cv::Mat& mapY, const cv::Rect2d& sheet) {
  cv::Mat share(mapX.size(), CV_32FC1);
  for (int row = 0; row < share.rows; ++row)
    for (int column = 0; column < share.cols; ++column)
      share.at<float>(row, column) = static_cast<float>(std::clamp(
          inside(mapX.at<float>(row, column), mapY.at<float>(row, column), sheet) + 0.5, 0.0, 1.0));
  return share;
}

void litByDisplay(cv::Mat& picture, const Display& display) {
  static const cv::Mat kTones = displayTones();
  cv::LUT(picture, kTones, picture);
  constexpr double kTurn = 6.283185307179586;
  for (int row = 0; row < picture.rows; ++row) {
    const double band = kFlicker * std::sin(display.flicker + kTurn * kBands * row / picture.rows);
    for (int column = 0; column < picture.cols; ++column) {
      // The grid of the display's pixels, seen through the grid of the camera's.
      const double beatX =
          std::cos(kTurn * (display.mapX.at<float>(row, column) / display.pixelPitch - column));
      const double beatY =
          std::cos(kTurn * (display.mapY.at<float>(row, column) / display.pixelPitch - row));
      const double light = (1.0 + kBeat * (beatX + beatY)) * (1.0 + band);
      const double x = (column - 0.72 * picture.cols) / (0.25 * picture.cols);
      const double y = (row - 0.2 * picture.rows) / (0.14 * picture.rows);
      const double shine = kReflection * std::exp(-(x * x + y * y));
      cv::Vec3b& pixel = picture.at<cv::Vec3b>(row, column);
      for (int channel = 0; channel < 3; ++channel)
        pixel[channel] = cv::saturate_cast<std::uint8_t>(pixel[channel] * light + shine);
    }
  }
}

cv::Mat frameDisplay(cv::Mat& picture, const cv::Mat& mapX, const cv::Mat& mapY,
                     const cv::Rect2d& screen) {
  const cv::Mat lit = shareOfSheet(mapX, mapY, screen);
  const cv::Mat bezel(picture.size(), CV_8UC3, kBezelColour);
  const cv::Mat shown = picture.clone();
  lay(bezel, shown, lit, picture);
  const cv::Rect2d device(screen.x - kBezel, screen.y - kBezel, screen.width + 2 * kBezel,
                          screen.height + 2 * kBezel);
  return shareOfSheet(mapX, mapY, device);
}

void lay(const cv::Mat& below, const cv::Mat& above, const cv::Mat& share, cv::Mat& picture) {
  cv::Mat result = above.clone();
  for (int row = 0; row < result.rows; ++row) {
    const auto* parts = share.ptr<float>(row);
    for (int column = 0; column < result.cols; ++column) {
      const double part = parts[column];
      if (part >= 1.0) continue;
      cv::Vec3b& pixel = result.at<cv::Vec3b>(row, column);
      pixel = cv::Vec3b(cv::Vec3d(pixel) * part +
                        cv::Vec3d(below.at<cv::Vec3b>(row, column)) * (1.0 - part));
    }
  }
  picture = result;
}

}  // namespace corvana::session
