#include "engine/document/guidance/CardQuality.h"

#include <algorithm>
#include <array>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "engine/vision/MatViews.h"

namespace corvana::engine {

const char* nameOf(CardFlaw flaw) {
  static constexpr std::array kNames{"tooDark", "tooMuchGlare", "blurred", "covered", "copy"};
  return kNames[static_cast<std::size_t>(flaw)];
}

std::optional<FlawFound> flawOf(const CardQuality& quality,
                                const corvana::IDCapture::Options& limits) {
  if (quality.brightness < limits.leastBrightness) {
    return FlawFound{CardFlaw::tooDark, quality.brightness, limits.leastBrightness};
  }
  if (quality.glare > limits.mostGlare) {
    return FlawFound{CardFlaw::tooMuchGlare, quality.glare, limits.mostGlare};
  }
  if (quality.sharpness < limits.leastSharpness) {
    return FlawFound{CardFlaw::blurred, quality.sharpness, limits.leastSharpness};
  }
  if (quality.coveredPrint > limits.mostCoveredPrint) {
    return FlawFound{CardFlaw::covered, quality.coveredPrint, limits.mostCoveredPrint};
  }
  return {};
}

double printSharpness(const platform::PixelBuffer& card) {
  constexpr double kMeasuredWidth = 500;
  constexpr int kMargin = 12;  // the card's own edges are no print
  constexpr double kNoiseFilter = 0.8;
  constexpr int kReach = 15;  // of a blurred edge, pixels
  constexpr float kLeastContrast = 30;
  constexpr double kSteepest = 0.95;  // the edges proper among all that lies near them
  constexpr std::size_t kFewest = 200;
  cv::Mat half;
  const double reduction = kMeasuredWidth / card.width();  // the same both ways, or edges lean
  cv::resize(grayMat(card), half, {}, reduction, reduction, cv::INTER_AREA);
  half = half(cv::Rect(kMargin, kMargin, half.cols - 2 * kMargin, half.rows - 2 * kMargin));
  half.convertTo(half, CV_32F);
  cv::GaussianBlur(half, half, {}, kNoiseFilter);
  cv::Mat dx;
  cv::Mat dy;
  cv::Scharr(half, dx, CV_32F, 1, 0, 1 / 32.0);
  cv::Scharr(half, dy, CV_32F, 0, 1, 1 / 32.0);
  cv::Mat slope;
  cv::magnitude(dx, dy, slope);
  cv::Mat lightest;
  cv::Mat darkest;
  cv::dilate(half, lightest, cv::Mat::ones(kReach, kReach, CV_8U));
  cv::erode(half, darkest, cv::Mat::ones(kReach, kReach, CV_8U));
  const cv::Mat contrast = lightest - darkest;
  std::vector<float> steepness;
  for (int row = 0; row < slope.rows; ++row) {
    for (int column = 0; column < slope.cols; ++column) {
      const float around = contrast.at<float>(row, column);
      if (around > kLeastContrast) steepness.push_back(slope.at<float>(row, column) / around);
    }
  }
  if (steepness.size() < kFewest) return 0;
  const auto rank = static_cast<std::ptrdiff_t>(kSteepest * static_cast<double>(steepness.size()));
  std::ranges::nth_element(steepness, steepness.begin() + rank);
  return steepness[static_cast<std::size_t>(rank)];
}

double brightnessOf(const platform::PixelBuffer& picture) {
  constexpr double kReduction = 1.0 / 8;  // brightness needs no detail
  cv::Mat small;
  cv::resize(grayMat(picture), small, {}, kReduction, kReduction, cv::INTER_AREA);
  std::array<int, 256> counts{};
  for (int row = 0; row < small.rows; ++row) {
    const auto* values = small.ptr<std::uint8_t>(row);
    for (int column = 0; column < small.cols; ++column)
      ++counts[values[column]];
  }
  int above = static_cast<int>(small.total() / 10);
  int value = 255;
  while (value > 0 && (above -= counts[static_cast<std::size_t>(value)]) >= 0)
    --value;
  return value / 255.0;
}

}  // namespace corvana::engine
