#include "engine/document/outline/CardWarp.h"

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

/// What brings the card inside the outline to its straightened picture.
cv::Mat toCard(const Quad& outline) {
  std::vector<cv::Point2f> from;
  for (const auto& corner : outline.corners) {
    from.emplace_back(static_cast<float>(corner.x), static_cast<float>(corner.y));
  }
  const float right = kCardWidth - 0.5F;
  const float bottom = static_cast<float>(straightenedHeight(outline)) - 0.5F;
  const std::vector<cv::Point2f> to{
      {-0.5F, -0.5F}, {right, -0.5F}, {right, bottom}, {-0.5F, bottom}};
  return cv::getPerspectiveTransform(from, to);
}

cv::Mat saturatedPatches(const cv::Mat& rgb) {
  cv::Mat mask;
  cv::inRange(rgb, cv::Scalar::all(kSaturated), cv::Scalar::all(255), mask);
  // Letters between white letters and specks are no patch.
  cv::morphologyEx(mask, mask, cv::MORPH_OPEN, cv::Mat::ones(7, 7, CV_8U));
  return mask;
}

}  // namespace

int straightenedHeight(const Quad& outline) {
  return outline.documentAspect() == kCardAspect ? kCardHeight : kPageHeight;
}

platform::PixelBufferRef straightened(const platform::PixelBuffer& picture, const Quad& outline) {
  const cv::Mat rgb = rgbMat(picture);
  const double shrink = outline.width() / kCardWidth;
  cv::Mat source = rgb;
  // Interpolation looks at four pixels only: what shrinks must be smoothed first.
  if (shrink > 1.3) cv::GaussianBlur(rgb, source, cv::Size(), 0.4 * shrink);
  cv::Mat card;
  cv::warpPerspective(source, card, toCard(outline),
                      cv::Size(kCardWidth, straightenedHeight(outline)), cv::INTER_CUBIC,
                      cv::BORDER_REPLICATE);
  return pixelBufferFrom(card);
}

platform::PixelBufferRef onItsHead(const platform::PixelBuffer& card) {
  cv::Mat turned;
  cv::rotate(rgbMat(card), turned, cv::ROTATE_180);
  return pixelBufferFrom(turned);
}

platform::CGRect boundsInPicture(const platform::CGRect& onCard, const Quad& outline) {
  const auto point = [](double x, double y) {
    return cv::Point2f(static_cast<float>(x), static_cast<float>(y));
  };
  std::vector<cv::Point2f> corners{
      point(onCard.minX(), onCard.minY()), point(onCard.maxX(), onCard.minY()),
      point(onCard.maxX(), onCard.maxY()), point(onCard.minX(), onCard.maxY())};
  cv::perspectiveTransform(corners, corners, toCard(outline).inv());
  Quad quad;
  std::ranges::transform(corners, quad.corners.begin(), [](const auto& corner) {
    return platform::CGPoint{corner.x, corner.y};
  });
  return quad.bounds();
}

double glareFraction(const platform::PixelBuffer& card) {
  const cv::Mat rgb = rgbMat(card);
  const cv::Mat mask = saturatedPatches(rgb);
  const double total = static_cast<double>(mask.total());
  if (cv::countNonZero(mask) > kWhiteCard * total) return 0;
  const cv::Mat gray = grayMat(card);
  cv::Mat labels;
  const int count = cv::connectedComponents(mask, labels);
  double lost = 0;
  for (int label = 1; label < count; ++label) {
    const cv::Mat patch = labels == label;
    cv::Mat around;
    cv::dilate(patch, around, cv::Mat::ones(15, 15, CV_8U));
    const double brightness = cv::mean(gray, around & ~patch)[0];
    if (brightness >= kBrightRing) lost += cv::countNonZero(patch);
  }
  return lost / total;
}

}  // namespace corvana::engine
