#include "engine/document/outline/StillCards.h"

#include <algorithm>
#include <cmath>

#include <opencv2/core.hpp>

#include "engine/vision/ImageOps.h"
#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

/// A straightened card has 1000 pixels: more than this adds nothing but time.
constexpr int kMostSide = 2400;
constexpr double kLeastCardWidth = 320;
constexpr double kCoarseSide = 640;
constexpr double kFineSide = 1280;

platform::PixelBufferRef reduced(const platform::PixelBufferRef& picture) {
  const int longest = std::max(picture->width(), picture->height());
  if (longest <= kMostSide) return rgbPicture(picture);
  const double factor = longest / static_cast<double>(kMostSide);
  return resized(*picture, static_cast<int>(std::lround(picture->width() / factor)),
                 static_cast<int>(std::lround(picture->height() / factor)));
}

platform::CGRect grown(const platform::CGRect& rect, double by) {
  return {rect.x - by, rect.y - by, rect.width + 2 * by, rect.height + 2 * by};
}

/// Absent where it would show hardly more than the still does.
std::optional<StillPart> partOf(const StillPicture& still, const platform::CGRect& area,
                                TextBoxes& print) {
  constexpr double kMostOfStill = 0.7;
  const cv::Mat rgb = rgbMat(*still.picture);
  const cv::Rect place = pixelRect(area, rgb.size());
  if (std::max(place.width, place.height) > kMostOfStill * std::max(rgb.cols, rgb.rows)) return {};
  const auto picture = pixelBufferFrom(rgb(place));
  return StillPart{{picture, print.find(rgbMat(*picture))}, {double(place.x), double(place.y)}};
}

}  // namespace

platform::Fault noCardSeen() {
  return {"No card was seen in the picture: photograph it from above, whole, on a plain ground."};
}

StillPicture stillPicture(const platform::PixelBufferRef& picture, TextBoxes& print) {
  StillPicture still{reduced(picture), {}};
  still.print = print.find(rgbMat(*still.picture));
  return still;
}

StillPicture lookedAtInParts(const StillPicture& still, TextBoxes& print) {
  // About as large as the network sees, of its shape, and overlapping so that no line is cut.
  constexpr double kPartOfStill = 0.42;
  constexpr double kLeastPart = 704;
  constexpr double kShape = 448.0 / 704;
  constexpr double kStep = 0.8;
  const cv::Mat rgb = rgbMat(*still.picture);
  const int width = cvRound(std::max(kLeastPart, kPartOfStill * std::max(rgb.cols, rgb.rows)));
  const int height = cvRound(kShape * width);
  StillPicture result{still.picture, {}};
  for (int top = 0; top < rgb.rows; top += cvRound(kStep * height)) {
    for (int left = 0; left < rgb.cols; left += cvRound(kStep * width)) {
      const cv::Rect part = cv::Rect(left, top, width, height) & cv::Rect({}, rgb.size());
      for (cv::RotatedRect& line : print.find(rgb(part))) {
        line.center += cv::Point2f(part.tl());
        result.print.push_back(line);
      }
    }
  }
  return result;
}

std::optional<StillPart> partAround(const StillPicture& still, const Quad& outline,
                                    TextBoxes& print) {
  constexpr double kRoom = 0.3;  // of the outline's width, on each side
  return partOf(still, grown(outline.bounds(), kRoom * outline.width()), print);
}

std::optional<StillPart> partAroundFace(const StillPicture& still, const platform::CGRect& face,
                                        TextBoxes& print) {
  constexpr double kFacesInCard = 7;  // on a card a face has a seventh of its width, or more
  return partOf(still, grown(face, kFacesInCard * face.width), print);
}

bool mayHavePrint(const StillPicture& still, const Quad& outline) {
  // On cards of 0.31 no line was seen at times, from 0.4 on most lines were.
  constexpr double kLeastShareOfStill = 0.42;
  const int side = std::max(still.picture->width(), still.picture->height());
  if (outline.width() < kLeastShareOfStill * side) return true;
  return std::ranges::any_of(still.print, [&outline](const cv::RotatedRect& line) {
    return outline.contains({line.center.x, line.center.y});
  });
}

platform::Expected<CardOutlines> cardsInStill(const StillPicture& still, Search search) {
  const double side = search == Search::coarse ? kCoarseSide : kFineSide;
  CardOutlines outlines = cardOutlines(rgbMat(*still.picture), still.print, side);
  if (outlines.seen.empty()) return tl::unexpected(noCardSeen());
  const auto isTooSmall = [](const Quad& quad) { return quad.width() < kLeastCardWidth; };
  std::erase_if(outlines.seen, isTooSmall);
  std::erase_if(outlines.wholes, isTooSmall);
  if (outlines.seen.empty()) {
    return platform::failure(
        "The card in the picture is less than 320 pixels wide: take the photo from nearer.");
  }
  return outlines;
}

}  // namespace corvana::engine
