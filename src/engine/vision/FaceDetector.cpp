#include "engine/vision/FaceDetector.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "engine/vision/BlazeFace.h"
#include "engine/vision/MatViews.h"

namespace engine {
namespace {

/// The second look's crop is this many times as wide as the face: the scale at which the network is
/// most exact.
constexpr double kSecondLookScale = 3;

/// A first look at least this sure stays when the second does not see the face (it may be half
/// hidden); one less sure was a mistake.
constexpr float kSureScore = 0.75F;

/// The second look's face is the first's if they overlap this much; a neighbour is not.
constexpr double kSameFaceOverlap = 0.3;

/// Smaller squares per shorter side of the picture: a face of an eighth of it then fills a fifth of
/// the square, which the network still sees.
constexpr double kSmallSquares = 1.6;

/// Neighbouring squares share at least this part of their side, so that a small face on the seam is
/// whole in one of them.
constexpr double kSharedPart = 0.25;

/// Starts of windows of `side` that cover `length` evenly.
std::vector<int> starts(int length, int side) {
  if (length <= side) return {(length - side) / 2};
  const int gaps = static_cast<int>(std::ceil((length - side) / (side * (1 - kSharedPart))));
  std::vector<int> result;
  for (int i = 0; i <= gaps; ++i)
    result.push_back((length - side) * i / gaps);
  return result;
}

std::vector<cv::Rect> squares(cv::Size picture, int side) {
  std::vector<cv::Rect> windows;
  for (int y : starts(picture.height, side)) {
    for (int x : starts(picture.width, side))
      windows.emplace_back(x, y, side, side);
  }
  return windows;
}

cv::Rect squareAround(const platform::CGRect& box, double side) {
  const int pixels = std::max(1, static_cast<int>(std::lround(side)));
  return {static_cast<int>(std::lround(box.midX() - side / 2)),
          static_cast<int>(std::lround(box.midY() - side / 2)), pixels, pixels};
}

bool isOnPicture(const Face& face, cv::Size picture) {
  return face.box.midX() >= 0 && face.box.midX() < picture.width && face.box.midY() >= 0 &&
         face.box.midY() < picture.height;
}

void append(std::vector<Face>& faces, const std::vector<Face>& more) {
  faces.insert(faces.end(), more.begin(), more.end());
}

/// The faces again, each seen through a crop around it.
std::vector<Face> secondLook(TfliteModel& model, const cv::Mat& rgb,
                             const std::vector<Face>& found) {
  std::vector<Face> faces;
  for (const Face& first : found) {
    const std::vector<Face> seen =
        blazeface::look(model, rgb, squareAround(first.box, kSecondLookScale * first.size()));
    const auto closest = std::ranges::max_element(
        seen, {}, [&](const Face& face) { return overlap(face.box, first.box); });
    if (closest != seen.end() && overlap(closest->box, first.box) > kSameFaceOverlap) {
      faces.push_back(*closest);
    } else if (first.score >= kSureScore) {
      faces.push_back(first);
    }
  }
  return faces;
}

}  // namespace

tl::expected<FaceDetector, corvana::IDError> FaceDetector::load(
    const std::filesystem::path& model) {
  return TfliteModel::load(model, blazeface::shapes()).map([](TfliteModel&& loaded) {
    return FaceDetector(std::move(loaded));
  });
}

std::vector<Face> FaceDetector::detect(const platform::PixelBuffer& picture, Search search) {
  const cv::Mat rgb = rgbMat(picture);
  const cv::Size size = rgb.size();
  const auto [shorter, longer] = std::minmax(size.width, size.height);
  const auto lookAtSquares = [&](std::vector<Face>& found, int side) {
    for (const cv::Rect& window : squares(size, side)) {
      append(found, blazeface::look(model_, rgb, window));
    }
  };

  std::vector<Face> found;
  lookAtSquares(found, longer);
  if (longer > shorter) lookAtSquares(found, shorter);
  if (found.empty() || search == Search::everywhere) {
    lookAtSquares(found, std::max(1, static_cast<int>(shorter / kSmallSquares)));
  }
  std::vector<Face> faces =
      blazeface::merged(secondLook(model_, rgb, blazeface::merged(std::move(found))));
  std::erase_if(faces, [&](const Face& face) { return !isOnPicture(face, size); });
  std::ranges::stable_sort(faces, std::ranges::greater{}, &Face::size);
  return faces;
}

}  // namespace engine
