#include "engine/selfie/FaceView.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include <opencv2/imgproc.hpp>

#include "engine/vision/MatViews.h"

namespace corvana::engine {
namespace {

// In pixels of the view.
constexpr int kSide = 224;
constexpr double kEyesFromTop = 80;
/// From a patch's middle to its edge. A larger one holds nose and cheek, which move apart.
constexpr int kPatch = 6;
/// From where the other view's points have it.
constexpr int kReach = 10;

/// An eye from its middle to its corners and lids, and how far the network may have misplaced it.
const cv::Size kHalfEye{13, 7};
const cv::Size kEyeReach{4, 4};

/// Of a patch and the place where it is found again: less is another thing, or hidden.
constexpr double kLeastLikeness = 0.7;
/// Mean square of the steps of grey in plain skin. Texture much above it says no more: a patch is
/// then found as well as it can be.
constexpr double kPlainSkin = 20;

cv::Matx23d transformOf(const FaceMesh& mesh) {
  const SurfacePoint& right = mesh[kRightEyeOuterCorner];
  const SurfacePoint& left = mesh[kLeftEyeOuterCorner];
  const double x = left.x - right.x, y = left.y - right.y;
  const double square = std::max(x * x + y * y, 1.0);
  const double c = FaceView::kEyes * x / square, s = FaceView::kEyes * y / square;
  const double middleX = (left.x + right.x) / 2, middleY = (left.y + right.y) / 2;
  return {c,  s, kSide / 2.0 - c * middleX - s * middleY,
          -s, c, kEyesFromTop + s * middleX - c * middleY};
}

cv::Rect around(const SurfacePoint& point, cv::Size half) {
  return {static_cast<int>(std::lround(point.x)) - half.width,
          static_cast<int>(std::lround(point.y)) - half.height, 2 * half.width + 1,
          2 * half.height + 1};
}

cv::Rect around(const SurfacePoint& point, int radius) {
  return around(point, {radius, radius});
}

bool isInside(const cv::Rect& area) {
  return (area & cv::Rect(0, 0, kSide, kSide)) == area;
}

/// Where a parabola through three values has its top, from the middle one.
double topOf(double before, double at, double after) {
  const double bend = before - 2 * at + after;
  return bend < 0 ? (before - after) / (2 * bend) : 0;
}

void measureTexture(const cv::Mat& patch, SkinMotion& motion) {
  cv::Mat x, y;
  cv::Sobel(patch, x, CV_32F, 1, 0, 3, 1.0 / 8);
  cv::Sobel(patch, y, CV_32F, 0, 1, 3, 1.0 / 8);
  const double xx = x.dot(x), yy = y.dot(y);
  const double most = xx + yy + kPlainSkin * static_cast<double>(patch.total());
  motion.xx = xx / most;
  motion.xy = x.dot(y) / most;
  motion.yy = yy / most;
}

std::optional<SkinMotion> motionOf(const cv::Mat& from, const cv::Mat& to, std::size_t index,
                                   const SurfacePoint& before, const SurfacePoint& after) {
  const cv::Rect place = around(before, kPatch);
  const cv::Rect search = around(after, kPatch + kReach);
  if (!isInside(place) || !isInside(search)) return {};
  const cv::Mat patch = from(place);
  cv::Mat likeness;
  cv::matchTemplate(to(search), patch, likeness, cv::TM_CCOEFF_NORMED);
  double best = 0;
  cv::Point at;
  cv::minMaxLoc(likeness, nullptr, &best, nullptr, &at);
  const bool isOnEdge = at.x == 0 || at.y == 0 || at.x == 2 * kReach || at.y == 2 * kReach;
  if (isOnEdge || best < kLeastLikeness) return {};
  const auto value = [&](int x, int y) { return likeness.at<float>(at.y + y, at.x + x); };
  SkinMotion motion{.point = index,
                    .x = search.x + at.x - place.x + topOf(value(-1, 0), value(0, 0), value(1, 0)),
                    .y = search.y + at.y - place.y + topOf(value(0, -1), value(0, 0), value(0, 1))};
  measureTexture(patch, motion);
  return motion;
}

/// One where an eye is not whole within the view: nothing is known of it then.
double eyeLikeness(const FaceView& a, const FaceView& b, std::size_t outer, std::size_t inner) {
  const auto middle = [&](const FaceView& view) {
    const SurfacePoint& o = view.mesh[outer];
    const SurfacePoint& i = view.mesh[inner];
    return SurfacePoint{(o.x + i.x) / 2, (o.y + i.y) / 2, 0};
  };
  const cv::Rect eye = around(middle(a), kHalfEye);
  const cv::Rect search = around(middle(b), kHalfEye + kEyeReach);
  if (!isInside(eye) || !isInside(search)) return 1;
  cv::Mat likeness;
  cv::matchTemplate(grayMat(*b.picture)(search), grayMat(*a.picture)(eye), likeness,
                    cv::TM_CCOEFF_NORMED);
  double most = 0;
  cv::minMaxLoc(likeness, nullptr, &most);
  return std::max(most, 0.0);
}

}  // namespace

double eyesLikeness(const FaceView& a, const FaceView& b) {
  return std::max(eyeLikeness(a, b, kRightEyeOuterCorner, kRightEyeInnerCorner),
                  eyeLikeness(a, b, kLeftEyeOuterCorner, kLeftEyeInnerCorner));
}

FaceView faceView(const platform::PixelBuffer& picture, const FaceMesh& mesh) {
  const cv::Matx23d transform = transformOf(mesh);
  cv::Mat view;
  cv::warpAffine(grayMat(picture), view, transform, {kSide, kSide}, cv::INTER_LINEAR,
                 cv::BORDER_REPLICATE);
  FaceView face{pixelBufferFrom(view), mesh};
  const double scale = std::hypot(transform(0, 0), transform(0, 1));
  for (SurfacePoint& point : face.mesh) {
    const cv::Vec2d place = transform * cv::Vec3d(point.x, point.y, 1);
    point = {place[0], place[1], point.z * scale};
  }
  return face;
}

std::vector<SkinMotion> skinMotions(const FaceView& from, const FaceView& to,
                                    std::span<const std::size_t> points) {
  const cv::Mat before = grayMat(*from.picture);
  const cv::Mat after = grayMat(*to.picture);
  std::vector<SkinMotion> motions;
  for (const std::size_t index : points) {
    if (const auto motion = motionOf(before, after, index, from.mesh[index], to.mesh[index]))
      motions.push_back(*motion);
  }
  return motions;
}

}  // namespace corvana::engine
