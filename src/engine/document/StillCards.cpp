#include "engine/document/StillCards.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include <opencv2/imgproc.hpp>

#include "engine/document/CardFinder.h"
#include "engine/vision/ImageOps.h"
#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

/// A straightened card has 1000 pixels: more than this adds nothing but time.
constexpr int kMostSide = 2400;
constexpr double kLeastCardWidth = 320;
/// A picture this near to a card's shape may be nothing but the card.
constexpr double kShapeTolerance = 0.08;
constexpr double kLeastWidthOfPicture = 0.3;

platform::PixelBufferRef reduced(const platform::PixelBuffer& picture) {
  const double factor =
      std::max(1.0, std::max(picture.width(), picture.height()) / static_cast<double>(kMostSide));
  return resized(picture, static_cast<int>(std::lround(picture.width() / factor)),
                 static_cast<int>(std::lround(picture.height() / factor)));
}

std::optional<Quad> outlineIn(const platform::PixelBuffer& picture) {
  const double width = picture.width();
  const double height = picture.height();
  const double guideWidth = std::min(width, height * kCardAspect) * 0.9;
  const platform::CGRect guide{(width - guideWidth) / 2, (height - guideWidth / kCardAspect) / 2,
                               guideWidth, guideWidth / kCardAspect};
  const CardSighting sighting = findCard(picture, guide);
  if (sighting.outline && sighting.outline->width() >= kLeastWidthOfPicture * width) {
    return sighting.outline;
  }
  const double shape = width / height / kCardAspect;
  if (std::abs(std::log(shape)) > kShapeTolerance) return std::nullopt;
  return Quad{
      {{{-0.5, -0.5}, {width - 0.5, -0.5}, {width - 0.5, height - 0.5}, {-0.5, height - 0.5}}}};
}

}  // namespace

platform::Expected<std::vector<StillCard>> cardsInStill(const platform::PixelBuffer& picture) {
  const auto upright = reduced(picture);
  constexpr std::array<int, 3> kTurns{cv::ROTATE_180, cv::ROTATE_90_CLOCKWISE,
                                      cv::ROTATE_90_COUNTERCLOCKWISE};
  std::vector<StillCard> cards;
  const auto add = [&](const platform::PixelBufferRef& turned) {
    if (auto outline = outlineIn(*turned)) cards.push_back({turned, *outline});
  };
  add(upright);
  for (const int turn : kTurns) {
    cv::Mat turned;
    cv::rotate(rgbMat(*upright), turned, turn);
    add(pixelBufferFrom(turned));
  }
  if (cards.empty()) {
    return platform::failure(
        "No card was seen in the picture: photograph it from above, whole, on a plain ground.");
  }
  if (cards.front().outline.width() < kLeastCardWidth) {
    return platform::failure(
        "The card in the picture is less than 320 pixels wide: take the photo from nearer.");
  }
  return cards;
}

}  // namespace corvana::engine
