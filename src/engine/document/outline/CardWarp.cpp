#include "engine/document/outline/CardWarp.h"

#include <algorithm>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

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

platform::PixelBufferRef straightened(const cv::Mat& picture, const Quad& outline,
                                      cv::InterpolationFlags interpolation) {
  const double shrink = outline.width() / kCardWidth;
  cv::Mat source;
  // Interpolation looks at four pixels only: what shrinks must be smoothed first, in a picture of
  // its own, since the given one is looked at again.
  if (shrink > 1.3)
    cv::GaussianBlur(picture, source, cv::Size(), 0.4 * shrink);
  else
    source = picture;
  cv::Mat card;
  cv::warpPerspective(source, card, toCard(outline),
                      cv::Size(kCardWidth, straightenedHeight(outline)), interpolation,
                      cv::BORDER_REPLICATE);
  return pixelBufferFrom(card);
}

}  // namespace

int straightenedHeight(const Quad& outline) {
  return outline.documentAspect() == kCardAspect ? kCardHeight : kPageHeight;
}

platform::PixelBufferRef straightened(const platform::PixelBuffer& picture, const Quad& outline) {
  return straightened(rgbMat(picture), outline, cv::INTER_CUBIC);
}

platform::PixelBufferRef straightenedGray(const platform::PixelBuffer& picture,
                                          const Quad& outline) {
  // Measured at half this size, print seems one to four per cent less sharp than by the better
  // interpolation, which takes four times as long.
  return straightened(grayMat(picture), outline, cv::INTER_LINEAR);
}

platform::PixelBufferRef onItsHead(const platform::PixelBuffer& card) {
  cv::Mat turned;
  cv::rotate(rgbMat(card), turned, cv::ROTATE_180);
  return pixelBufferFrom(turned);
}

Quad quadInPicture(const platform::CGRect& onCard, const Quad& outline) {
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
  return quad;
}

platform::CGRect boundsInPicture(const platform::CGRect& onCard, const Quad& outline) {
  return quadInPicture(onCard, outline).bounds();
}

}  // namespace corvana::engine
