#include "engine/document/copies/CopyFigures.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "engine/document/copies/ColouredFringes.h"
#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

constexpr int kRim = 24;  ///< pixels of the card where the outline may be wrong

// Limits of the figures, measured as docs/copies.md tells.
constexpr double kSuspectColour = 0.024;
constexpr double kSureColour = 0.016;
constexpr double kSuspectFringes = 0.0068;
constexpr double kSureFringes = 0.0100;
constexpr double kSuspectBlack = 0.24;
constexpr double kSureBlack = 0.45;

cv::Mat withoutRim(const cv::Mat& card) {
  return card(cv::Rect(kRim, kRim, card.cols - 2 * kRim, card.rows - 2 * kRim));
}

float quantile(std::vector<float>& values, double share) {
  if (values.empty()) return 0;
  const auto rank = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
  std::ranges::nth_element(values, values.begin() + rank);
  return values[static_cast<std::size_t>(rank)];
}

/// How far all values but the farthest lie from the middle one.
float spread(std::vector<float> values) {
  constexpr double kAllButAFinger = 0.85;
  const float middle = quantile(values, 0.5);
  for (float& value : values)
    value = std::abs(value - middle);
  return quantile(values, kAllButAFinger);
}

double colourOf(const cv::Mat& rgb) {
  constexpr double kReduction = 0.1;  // noise goes, and so does the little colour that lenses add
  constexpr float kDark = 30;
  constexpr float kGlaring = 250;
  cv::Mat small;
  cv::resize(rgb, small, {}, kReduction, kReduction, cv::INTER_AREA);
  std::vector<float> reds;
  std::vector<float> blues;
  for (int row = 0; row < small.rows; ++row) {
    for (int column = 0; column < small.cols; ++column) {
      const cv::Vec3f pixel = small.at<cv::Vec3b>(row, column);
      const float sum = pixel[0] + pixel[1] + pixel[2];
      const bool hasNoColour =
          sum < 3 * kDark || std::max({pixel[0], pixel[1], pixel[2]}) > kGlaring;
      if (hasNoColour) continue;
      reds.push_back(3 * (pixel[0] - pixel[1]) / sum);
      blues.push_back(3 * (pixel[2] - pixel[1]) / sum);
    }
  }
  return std::max(spread(reds), spread(blues));
}

/// Brightness in shares of the lightest ground within about a centimetre.
cv::Mat shareOfGround(const cv::Mat& gray) {
  constexpr double kReduction = 0.25;
  cv::Mat smooth;
  cv::blur(gray, smooth, {3, 3});
  cv::Mat ground;
  cv::resize(smooth, ground, {}, kReduction, kReduction, cv::INTER_AREA);
  cv::dilate(ground, ground, cv::Mat::ones(31, 31, CV_8U));
  cv::GaussianBlur(ground, ground, {}, 10);
  cv::resize(ground, ground, gray.size());
  cv::Mat share;
  cv::divide(smooth, ground, share, 1, CV_32F);
  return share;
}

std::optional<double> blackOf(const platform::PixelBuffer& card, double sharpness) {
  constexpr double kPrint = 0.6;  // of the ground's brightness
  constexpr std::size_t kEnough = 100;
  constexpr double kBlackest = 0.05;
  constexpr double kLeastSharpness = 0.05;
  // The blur's standard deviation, from the slope that it leaves an edge at half the size.
  const double blur = 0.8 / std::max(sharpness, kLeastSharpness);
  const double depth = std::max(1.5, 1.3 * blur);
  const cv::Mat share = withoutRim(shareOfGround(grayMat(card)));
  cv::Mat fromEdge;
  cv::distanceTransform(share < kPrint, fromEdge, cv::DIST_L2, 3);
  std::vector<float> blacks;
  for (int row = 0; row < share.rows; ++row) {
    for (int column = 0; column < share.cols; ++column) {
      if (fromEdge.at<float>(row, column) >= depth) blacks.push_back(share.at<float>(row, column));
    }
  }
  if (blacks.size() < kEnough) return {};
  return quantile(blacks, kBlackest);
}

/// 0.5 at the first limit and 0.9 at the second, as the figure's logarithm goes.
float scoreOf(double figure, double suspect, double sure) {
  if (figure <= 0) return suspect < sure ? 0.0F : 1.0F;
  const double beyond = std::log(figure / suspect) / std::log(sure / suspect);
  return static_cast<float>(std::clamp(0.5 + 0.4 * beyond, 0.0, 1.0));
}

}  // namespace

CopyFigures copyFigures(const platform::PixelBuffer& card, double sharpness) {
  const cv::Mat rgb = withoutRim(rgbMat(card));
  return {colourOf(rgb), colouredFringes(rgb), blackOf(card, sharpness)};
}

corvana::RealnessScores realnessOf(const CopyFigures& figures, bool hasPhoto) {
  constexpr float kMostOfPaleBlack = 0.8F;
  const float grey = hasPhoto ? scoreOf(figures.colour, kSuspectColour, kSureColour) : 0.0F;
  const float pale = figures.black ? scoreOf(*figures.black, kSuspectBlack, kSureBlack) : 0.0F;
  corvana::RealnessScores scores;
  scores.photocopyScore = std::max(grey, std::min(pale, kMostOfPaleBlack));
  scores.screenScore = scoreOf(figures.fringes, kSuspectFringes, kSureFringes);
  scores.realScore = 1 - copyScore(scores);
  return scores;
}

float copyScore(const corvana::RealnessScores& scores) {
  return std::max(scores.photocopyScore, scores.screenScore);
}

void judgeRealness(const corvana::RealnessScores& scores, corvana::DetectedData& data) {
  data.realness = scores;
  data.isReal = copyScore(scores) < kSuspectCopy;
}

}  // namespace corvana::engine
