#include "engine/document/copies/ColouredFringes.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <opencv2/imgproc.hpp>

namespace corvana::engine {
namespace {

/// Bands are some millimetres wide: at half the size they are all there, and noise is not.
constexpr double kReduction = 0.5;
/// A pattern must show in large tiles, which tell it from what changes slowly, and in small ones,
/// which tell it from a single edge or band of the design.
constexpr int kLargeTile = 128;
constexpr int kSmallTile = 64;
/// The pattern is as strong as in all tiles but the weakest of this share.
constexpr double kWeakest = 0.3;
constexpr double kSlowest = 2;         ///< periods in a tile; slower changes are the light's
constexpr double kFastest = 0.48;      ///< periods in a pixel
constexpr double kSlowChanges = 12;    ///< pixels; the light's and the design's
constexpr double kMostContrast = 0.4;  ///< of the ground; print beyond it is no pattern's

/// One colour's changes about its local mean, of which it is the share.
cv::Mat changes(const cv::Mat& channel) {
  cv::Mat picture;
  channel.convertTo(picture, CV_32F);
  cv::Mat mean;
  cv::GaussianBlur(picture, mean, {}, kSlowChanges);
  picture = picture / (mean + 1) - 1;
  cv::max(picture, -kMostContrast, picture);
  cv::min(picture, kMostContrast, picture);
  return picture;
}

/// In the order in which a display's points have their colours side by side.
struct Changes {
  cv::Mat red;
  cv::Mat green;
  cv::Mat blue;
};

cv::Mat spectrum(const cv::Mat& tile, const cv::Mat& window) {
  cv::Mat result;
  cv::dft(tile.mul(window), result, cv::DFT_COMPLEX_OUTPUT);
  return result;
}

/// What two colours share a quarter of a period apart.
float quarterApart(const cv::Vec2f& a, const cv::Vec2f& b) {
  return a[1] * b[0] - a[0] * b[1];
}

/// For each frequency how far green follows red, and blue green. Red and blue alone would not do:
/// two steps may be half a period, after which they are a quarter apart nowhere. Where the pattern
/// begins in the tile does not matter, so that the same pattern gives the same sign in every tile.
cv::Mat outOfStep(const Changes& card, const cv::Rect& tile, const cv::Mat& window) {
  const cv::Mat red = spectrum(card.red(tile), window);
  const cv::Mat green = spectrum(card.green(tile), window);
  const cv::Mat blue = spectrum(card.blue(tile), window);
  cv::Mat result(tile.height, tile.width / 2 + 1, CV_32F);
  for (int row = 0; row < result.rows; ++row) {
    for (int column = 0; column < result.cols; ++column) {
      const auto& g = green.at<cv::Vec2f>(row, column);
      result.at<float>(row, column) = (quarterApart(red.at<cv::Vec2f>(row, column), g) +
                                       quarterApart(g, blue.at<cv::Vec2f>(row, column))) /
                                      2;
    }
  }
  return result;
}

/// Tiles that overlap by a half and cover the card.
std::vector<cv::Mat> outOfStepInTiles(const Changes& card, int side, const cv::Mat& window) {
  const cv::Size size = card.red.size();
  const int columns = 2 * (size.width / side) + 1;
  const int rows = 2 * (size.height / side) + 1;
  std::vector<cv::Mat> tiles;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      const cv::Rect place((size.width - side) * column / (columns - 1),
                           (size.height - side) * row / (rows - 1), side, side);
      tiles.push_back(outOfStep(card, place, window));
    }
  }
  return tiles;
}

/// What almost all values reach that are of one sign; 0 when they are not.
float common(std::vector<float>& values) {
  const auto rank = static_cast<std::ptrdiff_t>(kWeakest * static_cast<double>(values.size()));
  std::ranges::nth_element(values, values.begin() + rank);
  const float positive = values[static_cast<std::size_t>(rank)];
  std::ranges::nth_element(values, values.end() - 1 - rank);
  const float negative = *(values.end() - 1 - rank);
  return std::max({positive, -negative, 0.0F});
}

double strongestPattern(const Changes& card, int side) {
  cv::Mat window;
  cv::createHanningWindow(window, {side, side}, CV_32F);
  const auto tiles = outOfStepInTiles(card, side, window);
  std::vector<float> values(tiles.size());
  float strongest = 0;
  for (int row = 0; row < side; ++row) {
    for (int column = 0; column <= side / 2; ++column) {
      const double frequency = std::hypot(std::min(row, side - row), column);
      if (frequency < kSlowest || frequency > kFastest * side) continue;
      std::ranges::transform(tiles, values.begin(),
                             [&](const cv::Mat& tile) { return tile.at<float>(row, column); });
      strongest = std::max(strongest, common(values));
    }
  }
  return std::sqrt(strongest) / (cv::sum(window)[0] / 2);
}

}  // namespace

double colouredFringes(const cv::Mat& rgb) {
  cv::Mat half;
  cv::resize(rgb, half, {}, kReduction, kReduction, cv::INTER_AREA);
  if (std::min(half.rows, half.cols) < kLargeTile) return 0;
  std::vector<cv::Mat> channels;
  cv::split(half, channels);
  const Changes card{changes(channels[0]), changes(channels[1]), changes(channels[2])};
  const double inLarge = strongestPattern(card, kLargeTile);
  return inLarge > 0 ? std::sqrt(inLarge * strongestPattern(card, kSmallTile)) : 0;
}

}  // namespace corvana::engine
