#include "engine/document/guidance/Glare.h"

#include <algorithm>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

constexpr int kSaturated = 250;
/// Glare fades: what lies around a patch is still bright. A printed white field ends at once.
constexpr double kBrightRing = 205;
constexpr double kWhiteCard = 0.5;

/// Of the darkest colour.
constexpr int kLightGround = 235;
constexpr int kDarkPrint = 140;
/// Of a light ground that is paper print takes 3 % and more, of a blot of glare 0.5 % at most.
constexpr double kLeastPrint = 0.015;
/// Letters on paper are closed over; the rim of a blot may touch print.
constexpr int kLetter = 15;
constexpr int kRim = 25;
/// What lies so far from a light ground, in pixels, is hardly darker where light falls off slowly
/// over paper; a blot has ended there. Print and a photo may take most of the place.
constexpr int kNear = 20;
constexpr int kFar = 60;
constexpr int kSlightlyDarker = 228;
constexpr double kLeastSlightlyDarker = 0.2;

cv::Mat square(int side) {
  return cv::Mat::ones(side, side, CV_8U);
}

cv::Mat saturatedPatches(const cv::Mat& card) {
  cv::Mat smooth;
  cv::blur(card, smooth, {5, 5});  // noise takes single pixels of a blot below the limit
  cv::Mat mask;
  cv::inRange(smooth, cv::Scalar::all(kSaturated), cv::Scalar::all(255), mask);
  // Letters between white letters and specks are no patch.
  cv::morphologyEx(mask, mask, cv::MORPH_OPEN, square(7));
  return mask;
}

cv::Mat lightGround(const cv::Mat& rgb) {
  cv::Mat mask;
  cv::inRange(rgb, cv::Scalar::all(kLightGround), cv::Scalar::all(255), mask);
  cv::morphologyEx(mask, mask, cv::MORPH_OPEN, square(5));
  cv::morphologyEx(mask, mask, cv::MORPH_CLOSE, square(kLetter));
  return mask;
}

/// Whether print can be read well within the outer edge of a light ground.
bool holdsPrint(const cv::Mat& ground, const cv::Mat& gray) {
  std::vector<std::vector<cv::Point>> edges;
  cv::findContours(ground, edges, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE);
  cv::Mat within(ground.size(), CV_8U, cv::Scalar(0));
  cv::drawContours(within, edges, -1, cv::Scalar(255), cv::FILLED);
  cv::erode(within, within, square(kRim));
  const double print = cv::countNonZero(within & (gray < kDarkPrint));
  return print > kLeastPrint * cv::countNonZero(within);
}

/// Whether a light ground gets darker only slowly beyond its edge.
bool fadesSlowly(const cv::Mat& ground, const cv::Mat& rgb) {
  cv::Mat nearby;
  cv::Mat around;
  cv::dilate(ground, nearby, square(2 * kNear + 1));
  cv::dilate(ground, around, square(2 * kFar + 1));
  around.setTo(0, nearby);
  cv::Mat light;
  cv::inRange(rgb, cv::Scalar::all(kSlightlyDarker), cv::Scalar::all(255), light);
  const double share = cv::countNonZero(around & light);
  return share > kLeastSlightlyDarker * cv::countNonZero(around);
}

/// The patches that do not lie on paper.
cv::Mat withoutPaper(const cv::Mat& patches, const cv::Mat& rgb, const cv::Mat& gray) {
  cv::Mat labels;
  const int count = cv::connectedComponents(lightGround(rgb), labels);
  cv::Mat left = patches.clone();
  for (int label = 1; label < count; ++label) {
    const cv::Mat ground = labels == label;
    const bool hasPatches = cv::countNonZero(ground & patches) > 0;
    const bool isPaper = hasPatches && (holdsPrint(ground, gray) || fadesSlowly(ground, rgb));
    if (isPaper) left.setTo(0, ground);
  }
  return left;
}

}  // namespace

bool mayHaveGlare(const platform::PixelBuffer& grayCard) {
  return cv::countNonZero(saturatedPatches(grayMat(grayCard))) > 0;
}

double glareFraction(const platform::PixelBuffer& card) {
  const cv::Mat rgb = rgbMat(card);
  const cv::Mat patches = saturatedPatches(rgb);
  const int white = cv::countNonZero(patches);
  const double total = static_cast<double>(patches.total());
  if (white == 0 || white > kWhiteCard * total) return 0;
  const cv::Mat gray = grayMat(card);
  cv::Mat labels;
  const int count = cv::connectedComponents(withoutPaper(patches, rgb, gray), labels);
  double lost = 0;
  for (int label = 1; label < count; ++label) {
    const cv::Mat patch = labels == label;
    cv::Mat around;
    cv::dilate(patch, around, square(15));
    const double brightness = cv::mean(gray, around & ~patch)[0];
    if (brightness >= kBrightRing) lost += cv::countNonZero(patch);
  }
  return lost / total;
}

}  // namespace corvana::engine
