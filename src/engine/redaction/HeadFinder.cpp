#include "engine/redaction/HeadFinder.h"

#include <algorithm>
#include <array>
#include <utility>

#include <opencv2/core.hpp>

#include "engine/document/outline/CardFinder.h"
#include "engine/redaction/Cover.h"
#include "engine/vision/ImageOps.h"
#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

using platform::CGRect;
using platform::PixelBuffer;

/// Of the picture's shorter side: a live face is at least so wide, and no photo on a card.
constexpr double kLeastLiveShare = 0.22;
/// Whose face comes so near to the head may come before it, too.
constexpr double kCrowdMargin = 0.15;
/// Found twice, the same face overlaps itself by more.
constexpr double kSameFace = 0.3;
/// Of the face's width: no print on a card is so high, but hair may look like a line that is.
constexpr double kHighestPrint = 0.4;

CGRect grown(const CGRect& rect, double share) {
  const double across = share * rect.width;
  const double down = share * rect.height;
  return {rect.x - across, rect.y - down, rect.width + 2 * across, rect.height + 2 * down};
}

/// A second face may be the photo on a card that hides a part of the first: it is sought among the
/// small ones, too.
bool isCrowded(FaceDetector& finder, const PixelBuffer& picture, const CGRect& face) {
  const CGRect around = grown(headAround(face), kCrowdMargin);
  const auto part = cropped(picture, around);
  if (!part) return false;
  const CGRect own{face.x - std::max(around.x, 0.0), face.y - std::max(around.y, 0.0), face.width,
                   face.height};
  return std::ranges::any_of(
      finder.detect(*part, FaceDetector::Search::everywhere),
      [&](const Face& other) { return overlap(other.box, own) < kSameFace; });
}

Quad quadOf(const cv::RotatedRect& box) {
  std::array<cv::Point2f, 4> corners;
  box.points(corners.data());
  Quad quad;
  for (std::size_t i = 0; i < corners.size(); ++i)
    quad.corners[i] = {static_cast<double>(corners[i].x), static_cast<double>(corners[i].y)};
  return quad;
}

std::vector<Quad> printIn(TextBoxes& finder, const PixelBuffer& picture, const CGRect& face) {
  std::vector<Quad> print;
  for (const cv::RotatedRect& line : finder.find(rgbMat(picture))) {
    const double height = std::min(line.size.width, line.size.height);
    if (height <= kHighestPrint * face.width) print.push_back(quadOf(line));
  }
  return print;
}

}  // namespace

HeadFinder::HeadFinder(FaceDetector faces, TextBoxes print)
    : faces_(std::move(faces)), print_(std::move(print)) {}

platform::Expected<HeadFinder> HeadFinder::load(const std::filesystem::path& faceModel,
                                                const std::filesystem::path& printModel) {
  auto faces = FaceDetector::load(faceModel);
  if (!faces) return tl::unexpected(faces.error());
  auto print = TextBoxes::load(printModel);
  if (!print) return tl::unexpected(print.error());
  return HeadFinder(std::move(*faces), std::move(*print));
}

std::optional<CGRect> HeadFinder::faceIn(const PixelBuffer& picture) {
  const auto faces = faces_.detect(picture);
  const double shorter = std::min(picture.width(), picture.height());
  if (faces.empty() || faces.front().size() < kLeastLiveShare * shorter) return std::nullopt;
  return faces.front().box;
}

HeadSighting HeadFinder::lookAt(const PixelBuffer& picture, const CGRect& face) {
  HeadSighting sighting{.face = face};
  lookClosely(picture, sighting);
  return sighting;
}

void HeadFinder::lookClosely(const PixelBuffer& picture, HeadSighting& sighting) {
  sighting.isClose = true;
  if (!sighting.face) return;
  sighting.isCrowded = isCrowded(faces_, picture, *sighting.face);
  sighting.print = printIn(print_, picture, *sighting.face);
}

void HeadFinder::begin(const std::optional<CGRect>& face, platform::TimePoint time) {
  tracker_.stop();
  lastClose_.reset();
  if (face) tracker_.start(*face, time);
}

std::optional<CGRect> HeadFinder::follow(const PixelBuffer& picture, platform::TimePoint time) {
  if (!tracker_.isFollowing()) {
    const auto face = faceIn(picture);
    if (!face) return std::nullopt;
    tracker_.start(*face, time);
  }
  auto sighting = tracker_.update(faces_.detectNear(picture, tracker_.box()), time);
  if (!sighting.box) sighting = tracker_.update(faces_.detect(picture), time);
  return sighting.box;
}

HeadSighting HeadFinder::next(const platform::PixelBufferRef& picture, platform::TimePoint time,
                              const std::optional<CGRect>& guide) {
  const auto rgb = rgbPicture(picture);
  HeadSighting sighting{.time = time, .face = follow(*rgb, time)};
  if (lastClose_ && time - *lastClose_ < kCloseInterval) return sighting;
  lastClose_ = time;
  lookClosely(*rgb, sighting);
  if (guide) sighting.card = findCard(*rgb, *guide).outline;
  return sighting;
}

}  // namespace corvana::engine
