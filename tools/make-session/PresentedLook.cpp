#include "PresentedLook.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "Angles.h"

namespace corvana::session {
namespace {

constexpr double kPrintBlack = 34.0;  // of 255: ink on paper is never black
constexpr double kPrintWhite = 228.0;
constexpr double kDisplayBlack = 16.0;
constexpr double kDisplayGamma = 0.88;
constexpr float kBeat = 0.035F;  // of the brightness
constexpr double kFlicker = 0.02;
constexpr double kBands = 2.3;  // over the picture's height
const cv::Vec3b kBezelColour(22, 22, 24);
constexpr float kReflection = 26.0F;

/// Cosines of whole turns, finer than a film's steps of brightness show.
class CosineOfTurns {
 public:
  CosineOfTurns() {
    for (std::size_t i = 0; i < kSteps; ++i)
      values_[i] = static_cast<float>(std::cos(kFullTurn * static_cast<double>(i) / kSteps));
  }
  float at(float turns) const {
    return values_[static_cast<std::size_t>(static_cast<int>(turns * kSteps)) % kSteps];
  }

 private:
  static constexpr std::size_t kSteps = 1024;
  std::array<float, kSteps> values_{};
};

/// How far the reflection of a lamp reaches, from its middle at `middle` of `size`.
std::vector<float> reflected(int size, double middle, double reach) {
  std::vector<float> shares;
  for (int place = 0; place < size; ++place) {
    const double distance = (place - middle * size) / (reach * size);
    shares.push_back(static_cast<float>(std::exp(-distance * distance)));
  }
  return shares;
}

/// Shows of the picture what lies inside or at most `margin` outside, and `instead` beyond.
template <class Colour>
void hide(const cv::Mat& inside, float margin, cv::Mat& picture, Colour instead) {
  for (int row = 0; row < picture.rows; ++row) {
    const auto* depths = inside.ptr<float>(row);
    auto* pixels = picture.ptr<cv::Vec3b>(row);
    for (int column = 0; column < picture.cols; ++column) {
      const double part = depths[column] + margin + 0.5F;
      if (part >= 1.0) continue;
      const cv::Vec3b other = instead(row, column);
      pixels[column] =
          part <= 0.0
              ? other
              : cv::Vec3b(cv::Vec3d(pixels[column]) * part + cv::Vec3d(other) * (1.0 - part));
    }
  }
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

cv::Mat depthInside(const cv::Mat& mapX, const cv::Mat& mapY, const cv::Rect2d& sheet) {
  const auto left = static_cast<float>(sheet.x), right = static_cast<float>(sheet.br().x);
  const auto top = static_cast<float>(sheet.y), bottom = static_cast<float>(sheet.br().y);
  cv::Mat inside(mapX.size(), CV_32FC1);
  for (int row = 0; row < inside.rows; ++row) {
    const auto* x = mapX.ptr<float>(row);
    const auto* y = mapY.ptr<float>(row);
    auto* depths = inside.ptr<float>(row);
    for (int column = 0; column < inside.cols; ++column) {
      const float across = std::min(x[column] - left, right - x[column]);
      const float down = std::min(y[column] - top, bottom - y[column]);
      depths[column] = std::min(across, down);
    }
  }
  return inside;
}

void litByDisplay(cv::Mat& picture, const Display& display) {
  static const cv::Mat kTones = displayTones();
  cv::LUT(picture, kTones, picture);
  static const CosineOfTurns kCosine;
  const std::vector<float> shineAcross = reflected(picture.cols, 0.72, 0.25);
  const std::vector<float> shineDown = reflected(picture.rows, 0.2, 0.14);
  const auto density = static_cast<float>(1.0 / display.pixelPitch);
  for (int row = 0; row < picture.rows; ++row) {
    const double wave = std::sin(display.flicker + kFullTurn * kBands * row / picture.rows);
    const auto band = static_cast<float>(1.0 + kFlicker * wave);
    const float shine = kReflection * shineDown[static_cast<std::size_t>(row)];
    const auto* x = display.mapX.ptr<float>(row);
    const auto* y = display.mapY.ptr<float>(row);
    auto* pixels = picture.ptr<cv::Vec3b>(row);
    for (int column = 0; column < picture.cols; ++column) {
      // The grid of the display's pixels, seen through the grid of the camera's, whose steps are
      // whole turns.
      const float beat = kCosine.at(x[column] * density) + kCosine.at(y[column] * density);
      const float light = (1.0F + kBeat * beat) * band;
      const float added = shine * shineAcross[static_cast<std::size_t>(column)];
      for (int channel = 0; channel < 3; ++channel)
        pixels[column][channel] = cv::saturate_cast<std::uint8_t>(
            static_cast<float>(pixels[column][channel]) * light + added);
    }
  }
}

void frameDisplay(const cv::Mat& inside, cv::Mat& picture) {
  hide(inside, 0.0F, picture, [](int, int) { return kBezelColour; });
}

void lay(const cv::Mat& below, const cv::Mat& inside, float margin, cv::Mat& picture) {
  hide(inside, margin, picture,
       [&](int row, int column) { return below.at<cv::Vec3b>(row, column); });
}

}  // namespace corvana::session
