#include "engine/vision/FaceDetector.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include <opencv2/imgproc.hpp>

#include "engine/vision/BlazeFace.h"
#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

/// The second look's crop is this many times as wide as the face: the scale at which the network is
/// most exact.
constexpr double kSecondLookScale = 3;

/// Less sure than this at the best scale, it is a pattern that looked like a face; faces get 0.9.
constexpr float kLeastSecondScore = 0.65F;

/// A first look at least this sure stays when the second does not see the face (it may be half
/// hidden); one less sure was a mistake.
constexpr float kSureScore = 0.75F;

/// The second look's face is the first's if they overlap this much; a neighbour is not.
constexpr double kSameFaceOverlap = 0.3;

/// Crops that overlap this much show a face alike: it has moved by a tenth of its width at most.
constexpr double kSameCropOverlap = 0.9;

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

/// The picture and its half, from which wide windows are taken: shrinking them costs as much as the
/// network does.
class Looker {
 public:
  Looker(TfliteModel& model, cv::Mat rgb) : model_(model), rgb_(std::move(rgb)) {}

  cv::Size size() const { return rgb_.size(); }

  std::vector<Face> look(const cv::Rect& window) {
    if (window.width < kHalvedWindow) return blazeface::look(model_, rgb_, window);
    const cv::Rect halved(window.x / 2, window.y / 2, window.width / 2, window.height / 2);
    halve(halved);
    std::vector<Face> faces = blazeface::look(model_, half_, halved);
    for (Face& face : faces)
      face = scaled(face, 2);
    return faces;
  }

 private:
  static constexpr int kHalvedWindow = 4 * blazeface::kInputSide;

  /// Makes what of the half lies within the window.
  void halve(const cv::Rect& window) {
    if (half_.empty()) half_.create((rgb_.rows + 1) / 2, (rgb_.cols + 1) / 2, rgb_.type());
    const bool isEven = rgb_.rows % 2 == 0 && rgb_.cols % 2 == 0;
    const cv::Rect whole({}, half_.size());
    const cv::Rect part = isEven ? window & whole : whole;
    if (part.empty() || (part & halved_) == part) return;
    const cv::Mat from = isEven ? rgb_(cv::Rect(part.tl() * 2, part.size() * 2)) : rgb_;
    cv::Mat to = half_(part);
    cv::resize(from, to, part.size(), 0, 0, cv::INTER_AREA);
    halved_ = part;
  }

  TfliteModel& model_;
  cv::Mat rgb_;
  cv::Mat half_;
  cv::Rect halved_;  ///< the part of the half that is made
};

/// The faces again, each seen through a crop around it. The crop that all were seen through, if
/// there is one, may do.
std::vector<Face> secondLook(Looker& looker, const std::vector<Face>& found,
                             const std::optional<cv::Rect>& seenThrough) {
  std::vector<Face> faces;
  for (const Face& first : found) {
    const cv::Rect crop = squareAround(first.box, kSecondLookScale * first.size());
    if (seenThrough && first.score >= kLeastSecondScore &&
        overlap(rectOf(crop), rectOf(*seenThrough)) >= kSameCropOverlap) {
      faces.push_back(first);
      continue;
    }
    const std::vector<Face> seen = looker.look(crop);
    const auto closest = std::ranges::max_element(
        seen, {}, [&](const Face& face) { return overlap(face.box, first.box); });
    if (closest != seen.end() && overlap(closest->box, first.box) > kSameFaceOverlap) {
      if (closest->score >= kLeastSecondScore) faces.push_back(*closest);
    } else if (first.score >= kSureScore) {
      faces.push_back(first);
    }
  }
  return faces;
}

/// What is left of the faces after the second look, the largest first.
std::vector<Face> settled(Looker& looker, std::vector<Face> found,
                          const std::optional<cv::Rect>& seenThrough = {}) {
  std::vector<Face> faces =
      blazeface::merged(secondLook(looker, blazeface::merged(std::move(found)), seenThrough));
  std::erase_if(faces, [&](const Face& face) { return !isOnPicture(face, looker.size()); });
  std::ranges::stable_sort(faces, std::ranges::greater{}, &Face::size);
  return faces;
}

}  // namespace

platform::Expected<FaceDetector> FaceDetector::load(const std::filesystem::path& model) {
  return TfliteModel::load(model, blazeface::shapes(), inference::Runtime::xnnpack)
      .map([](TfliteModel&& loaded) { return FaceDetector(std::move(loaded)); });
}

std::vector<Face> FaceDetector::detect(const platform::PixelBuffer& picture, Search search) {
  Looker looker(model_, rgbMat(picture));
  const auto [shorter, longer] = std::minmax({picture.width(), picture.height()});
  std::vector<Face> found;
  const auto lookAtSquares = [&](int side) {
    for (const cv::Rect& window : squares(looker.size(), side)) {
      const std::vector<Face> faces = looker.look(window);
      found.insert(found.end(), faces.begin(), faces.end());
    }
  };
  lookAtSquares(longer);
  if (longer > shorter) lookAtSquares(shorter);
  if (found.empty() || search == Search::everywhere) {
    lookAtSquares(std::max(1, static_cast<int>(shorter / kSmallSquares)));
  }
  return settled(looker, std::move(found));
}

std::vector<Face> FaceDetector::detectNear(const platform::PixelBuffer& picture,
                                           const platform::CGRect& box) {
  Looker looker(model_, rgbMat(picture));
  const cv::Rect crop = squareAround(box, kSecondLookScale * std::max(box.width, box.height));
  return settled(looker, looker.look(crop), crop);
}

}  // namespace corvana::engine
